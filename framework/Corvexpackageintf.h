// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFlags>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

#include <functional>

#include "framework/Export.h"

// What a run-time package offers its host.

// A class that a package can name: its name, and how to make one (nullptr: it cannot be made by name).
struct TClassRef
{
    const char *name;
    QObject *(*create)();
};

// The run-time class registry: the host creates a package's interface by class name.
CORVEX_API void RegisterClass(const TClassRef &classRef);
CORVEX_API void UnRegisterClass(const TClassRef &classRef);
// nullptr when the name is not registered.
CORVEX_API const TClassRef *FindClass(const QString &name);
CORVEX_API QObject *CreateByClassName(const QString &name); // owned by the caller; nullptr when unknown

// Product modules that a registration belongs to; the host shows an entry when one of them is installed.
enum class TProductModule { Payroll, HumanResources, Time };
using TModules = QSet<TProductModule>;

using TObjectKinds = quint16; // bit set
constexpr TObjectKinds ObjectKind(int bit)
{
    return TObjectKinds(1u << bit);
}

// One entry for the host's navigation tree.
struct TObjectEntry
{
    TModules Modules;
    QString ObjectName;
    const TClassRef *ObjectClass = nullptr;
    QString GroupKey;
    TObjectKinds ObjectKinds = 0;
    QString Caption;
    int DisplayValue = 0;
    quintptr Extra = 0;
};

// An entry for the host's Tools menu. Run opens its own windows and returns when they are closed.
struct TToolEntry
{
    QString ObjectName; // of the menu entry
    QString Caption;    // with its access key
    std::function<void()> Run;
};

// Base of every package interface. The host owns it.
class CORVEX_API TCorvexPackageInterface : public QObject
{
    Q_OBJECT
public:
    TCorvexPackageInterface();
    ~TCorvexPackageInterface() override;

    // Registers the package's object classes through AddObjectClass; called once by the host, before any message.
    virtual void GetObjectClassList();
    // A numbered message. Handled is set to true by whoever carries it out; exceptions pass to the caller.
    // Parameters that carry pointers are pointer-sized.
    virtual void NonVisiblePkgMessage(uint MsgId, qlonglong Param1, qlonglong Param2, bool &Handled);
    // Whether a message would open something in this build; asked by the host for its navigation tree. Opens nothing.
    virtual bool CanHandleMessage(uint MsgId) const;

    // What the package adds to the host's Tools menu, in order.
    virtual QList<TToolEntry> ToolEntries() const;

    const QList<TObjectEntry> &ObjectEntries() const { return entries_; }

protected:
    void AddObjectClass(const TModules &Modules, const QString &ObjectName, const TClassRef *ObjectClass,
                        const QString &GroupKey, TObjectKinds ObjectKinds, const QString &Caption, int DisplayValue,
                        quintptr Extra);

private:
    QList<TObjectEntry> entries_;
};
