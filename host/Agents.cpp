// SPDX-License-Identifier: Apache-2.0
#include "host/Agents.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <stdexcept>

#include "framework/Kvglobal.h"
#include "framework/data/Database.h"
#include "host/HostSettings.h"

namespace {

const QString kLastAgent = QStringLiteral("agent");

} // namespace

QList<TAgent> ActiveAgents()
{
    const TDbRows rows = MainConnection().Select(
        QStringLiteral("select idAgent, cAgentName from dbo._btblAgents where bActive = 1 order by idAgent"));
    QList<TAgent> agents;
    for (int row = 0; row < rows.size(); ++row)
        agents.append({rows.Value(row, u"idAgent").toInt(), rows.Value(row, u"cAgentName").toString()});
    return agents;
}

void ChooseAgent(std::optional<int> wanted)
{
    const QList<TAgent> agents = ActiveAgents();
    const auto find = [&agents](int id) {
        return std::find_if(agents.cbegin(), agents.cend(), [id](const TAgent &agent) { return agent.id == id; });
    };
    if (agents.isEmpty())
        throw std::runtime_error("The database has no active agent.");
    auto chosen = find(wanted ? *wanted : HostSettings().value(kLastAgent).toInt());
    if (chosen == agents.cend() && wanted)
        throw std::runtime_error(QStringLiteral("There is no active agent %1.").arg(*wanted).toStdString());
    if (chosen == agents.cend())
        chosen = agents.cbegin();
    SetCurrentAgent(chosen->id, chosen->name);
}

bool AskForAgent(QWidget *parent)
{
    const QList<TAgent> agents = ActiveAgents();
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("frmAgent"));
    dialog.setWindowTitle(QDialog::tr("Change Agent"));
    auto *lstAgents = new QListWidget(&dialog);
    lstAgents->setObjectName(QStringLiteral("lstAgents"));
    for (const TAgent &agent : agents) {
        auto *item = new QListWidgetItem(agent.name, lstAgents);
        item->setData(Qt::UserRole, agent.id);
        if (agent.id == CurrentAgentID())
            lstAgents->setCurrentItem(item);
    }
    auto *label = new QLabel(QDialog::tr("&Who is working?"), &dialog);
    label->setBuddy(lstAgents);
    lstAgents->setAccessibleName(QDialog::tr("Who is working?"));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("btnOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("btnCancel"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(lstAgents, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(lstAgents);
    layout->addWidget(buttons);
    const QListWidgetItem *item = dialog.exec() == QDialog::Accepted ? lstAgents->currentItem() : nullptr;
    if (!item)
        return false;
    SetCurrentAgent(item->data(Qt::UserRole).toInt(), item->text());
    HostSettings().setValue(kLastAgent, item->data(Qt::UserRole).toInt());
    return true;
}
