// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QList>
#include <QString>
#include <QVariantMap>
#include <QWidget>

#include "framework/Export.h"

// What screens ask of the application that hosts them. The host sets itself once; without a host every screen is a
// window of its own and nothing is remembered.
class CORVEX_API TScreenHost
{
public:
    virtual ~TScreenHost() = default;
    // Takes a non-modal list screen in (as a tab) and shows it. The screen deletes itself when it is closed.
    virtual void ShowScreen(QWidget *screen) = 0;
    // Saved state of a screen or grid by name ({} when there is none).
    virtual QVariantMap LoadLayout(const QString &name) = 0;
    virtual void SaveLayout(const QString &name, const QVariantMap &layout) = 0;
    // F1: shows the help of a context number.
    virtual void ShowHelp(int helpContext, const QString &screenTitle) = 0;
};
CORVEX_API void SetScreenHost(TScreenHost *host); // not owned
CORVEX_API TScreenHost *ScreenHost();             // may be nullptr

// The notes form of a record: shows and edits the free text kept in _btblNotes. Modal.
// `table`: the notes table name of the record's query; `fromDialog`: called by an edit dialog; `title`: "" for the
// form's own.
CORVEX_API void DoNotesForm(const QString &table, int id, bool fromDialog, const QString &title);
// Whether a note exists. Throws TDbError.
CORVEX_API bool NoteExists(const QString &table, int id);

// The name that the resource package gives an icon (":/icons/<name>.svg"); an empty icon when the package is not
// loaded.
CORVEX_API QIcon ScreenIcon(const QString &name);
