// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include <optional>

class QWidget;

// A user of the product. There are no passwords: the database's own log-in guards the data.
struct TAgent
{
    int id = 0;
    QString name;
};

// Those that are active, by number. Throws TDbError.
QList<TAgent> ActiveAgents();
// Chooses who is at work: the wanted one, else the one of the last run, else the first active one.
// Throws std::runtime_error when the wanted one is not there or not active, or when there is none at all.
void ChooseAgent(std::optional<int> wanted);
// Lets the user choose; true when somebody was chosen. Throws TDbError.
bool AskForAgent(QWidget *parent);
