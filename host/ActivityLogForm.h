// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

#include "framework/Kvutils.h"

class QLabel;
class QLineEdit;
class QTimer;
class TqsGrid;

// The activity log, newest entry first: who added, changed or deleted what. A tab like the list screens.
class TfrmActivityLog final : public QWidget, public TGlobalListener
{
    Q_OBJECT
public:
    // Reads the log. Throws TDbError.
    explicit TfrmActivityLog(QWidget *parent = nullptr);
    // Something was saved or deleted somewhere: there may be a new entry.
    void GlobalMessage(TCorvexMessage &message) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void Refresh();
    void Export();

    TqsGrid *grdActivityLog;
    QLineEdit *edtFilter;
    QLabel *lblRecordCount;
    bool stale_ = false; // news came while another tab was in front
};
