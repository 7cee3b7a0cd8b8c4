// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

#include <functional>

#include "framework/Corvexpackageintf.h"

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

// The message that opens the screen of a class; 0 when no message does.
uint MessageOfClass(const QString &className);
// Messages whose second parameter is the address of a list of record ids: those that open a list screen.
bool SecondParameterIsList(uint message);
// Messages whose first parameter is the address of an object.
bool FirstParameterIsObject(uint message);

// A folder or a screen of the navigation tree.
struct TNavigationNode
{
    QString name; // the registered object name
    QString key;  // group key
    QString caption;
    QString className;
    bool folder = false;
    uint message = 0; // what opens it; 0 for folders and for screens that no message opens
    bool available = false;
    QList<TNavigationNode> children; // folders first, each kind in the order of registration
};

// Makes the tree of what a package registered. Folders nest by the prefixes of their keys; a screen hangs under the
// folder of its key, or under the nearest folder above it. `canOpen` says whether a message opens something in this
// installation. Of the tax parameter dialogs, which share a message, only the one of `country` is kept.
QList<TNavigationNode> BuildNavigation(const QList<TObjectEntry> &entries, quint8 country,
                                       const std::function<bool(uint)> &canOpen);

// The tree with its filter box.
class TNavigationTree final : public QWidget
{
    Q_OBJECT
public:
    explicit TNavigationTree(QWidget *parent = nullptr);
    void SetNodes(const QList<TNavigationNode> &nodes);
    void FocusFilter();

Q_SIGNALS:
    void Activated(uint message);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void AddNodes(QTreeWidgetItem *parent, const QList<TNavigationNode> &nodes);
    void ApplyFilter(const QString &text);
    void OpenItem(QTreeWidgetItem *item);

    QLineEdit *edtNavigationFilter;
    QTreeWidget *trvNavigation;
};
