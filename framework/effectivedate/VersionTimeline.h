// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QWidget>

#include "framework/Export.h"

class QCheckBox;
class QLabel;
class QStackedWidget;
class QTableWidget;
class QToolButton;
class TVersionStrip;

// One version of a dated record, as the timeline shows it.
struct TTimelineVersion
{
    int id = 0;
    QDate start;
    QDate end; // invalid: open
    bool deleted = false;
    QString value;  // what it says, such as a rate
    QString reason; // why it was made, "" when nobody said
    QString createdBy;
    QDate created;
    QString changedBy; // "" when it was never changed
    QDate changed;
};

// The versions of one record over time: a strip of past, present and future ones, with the deleted ones on demand, and
// the same as a table. Arrow keys walk through the versions, Enter or a click chooses one.
class CORVEX_API TVersionTimeline final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int version READ Version)
public:
    explicit TVersionTimeline(QWidget *parent = nullptr);
    // `caption` names the record; the versions in order of their dates. An empty list shows that there is nothing to
    // show.
    void SetVersions(const QString &caption, const QList<TTimelineVersion> &versions);
    // Marks a version as the one that the list stands on; nothing when it is not there.
    void SetVersion(int id);
    int Version() const { return version_; } // 0: none
    // A version in words: its dates, value, reason and makers.
    static QString Describe(const TTimelineVersion &version, const QDate &today);

Q_SIGNALS:
    void VersionChosen(int id); // by the user

private:
    void ShowVersions();
    void Select(int id);
    void Choose(int id);

    QLabel *lblTimeline;
    QLabel *lblVersionDetail;
    QCheckBox *chkShowDeleted;
    QToolButton *btnTimelineTable;
    QStackedWidget *stack_;
    TVersionStrip *strip_;
    QTableWidget *grdVersions;
    QList<TTimelineVersion> all_;
    QList<TTimelineVersion> shown_;
    int version_ = 0;
};
