// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>

#include "framework/Export.h"

// The installation's settings, shared by the host and every package.

inline constexpr quint8 kAustralia = 5;
inline constexpr quint8 kNewZealand = 6;
inline constexpr quint8 kOtherCountry = 7;

// 5 Australia, 6 New Zealand, 7 any other country. One byte, set by LoadInstallation or the host.
CORVEX_API extern quint8 CountryCode;

// What the record of the installation's defaults holds. Read once by LoadInstallation and again after the settings
// change.
struct CORVEX_API TInstallation
{
    int endTaxYear = 0;           // the year in which the tax year ends
    QString bsbFormat;            // edit-mask format of bank numbers, such as "000-000"
    bool hoursAndMinutes = false; // hours are shown as h:mm instead of a decimal
    int rateDecimals = 4;         // decimals of pay rates
    bool backpayEnabled = false;
    bool phase2Reporting = true;
};
CORVEX_API const TInstallation &Installation();
// Reads Defaults and the general parameters of the main connection, CountryCode included. Throws TDbError.
CORVEX_API void LoadInstallation();

// The tax year that lists show and new scales are stored with.
CORVEX_API int GetEndTaxYear();

// The agent at work (a user of the product), 0 before one is chosen.
CORVEX_API int CurrentAgentID();
CORVEX_API QString CurrentAgentName();
CORVEX_API void SetCurrentAgent(int id, const QString &name);

// Adds an entry to the activity log: `kind` of record ("Bank"), its code, and what happened ("Added", "Changed",
// "Deleted"). Uses the main connection and the caller's transaction. Throws TDbError.
CORVEX_API void LogActivity(const QString &kind, const QString &code, const QString &action);

// A list of record ids that a caller hands to a list screen and gets back filled.
class CORVEX_API TList
{
public:
    virtual ~TList() = default;
    virtual void Clear() { items_.clear(); }
    int Count() const { return int(items_.size()); }
    void Add(int id) { items_.append(id); }
    const QList<int> &Items() const { return items_; }

private:
    QList<int> items_;
};
