// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "framework/Kvglobal.h"
#include "framework/Kvutils.h"
#include "framework/Screens.h"
#include "framework/data/Database.h"

namespace {

// A record's note as it stands in the database; id 0: there is none.
struct TNote
{
    int id = 0;
    QString text;
    QString createdBy;
    QDateTime created;
    QString changedBy;
    QDateTime changed;

    bool SameAs(const TNote &other) const { return id == other.id && text == other.text; }
};

TDbParams NoteKey(const QString &table, int id)
{
    return {{QStringLiteral("table"), table}, {QStringLiteral("id"), id}};
}

TNote ReadNote(const QString &table, int id)
{
    const TDbRows rows = MainConnection().Select(
        QStringLiteral(
            "select n.idNotes, n.cNote, n.dCreated, n.dChanged, c.cAgentName as cCreatedBy, h.cAgentName as cChangedBy "
            "from dbo._btblNotes n left outer join dbo._btblAgents c on c.idAgent = n.iCreateAgentID "
            "left outer join dbo._btblAgents h on h.idAgent = n.iChangeAgentID "
            "where n.cNOTETBLTableName = :table and n.fNOTETBLTableID = :id"),
        NoteKey(table, id));
    TNote note;
    if (rows.isEmpty())
        return note;
    note.id = rows.Value(0, u"idNotes").toInt();
    note.text = rows.Value(0, u"cNote").toString();
    note.createdBy = rows.Value(0, u"cCreatedBy").toString();
    note.created = rows.Value(0, u"dCreated").toDateTime();
    note.changedBy = rows.Value(0, u"cChangedBy").toString();
    note.changed = rows.Value(0, u"dChanged").toDateTime();
    return note;
}

class TNotesForm final : public QDialog
{
public:
    TNotesForm(QString table, int id, const QString &title);

    void done(int result) override;

private:
    void ShowNote(const TNote &note);
    bool Save();
    bool WriteUnlessChanged(TNote &theirs);

    const QString table_;
    const int recordId_;
    TNote read_;
    QPlainTextEdit *memNotes;
    QLabel *lblWho;
};

TNotesForm::TNotesForm(QString table, int id, const QString &title)
    : QDialog(QApplication::activeWindow())
    , table_(std::move(table))
    , recordId_(id)
    , memNotes(new QPlainTextEdit(this))
    , lblWho(new QLabel(this))
{
    setObjectName(QStringLiteral("frmNotes"));
    setWindowTitle(title.isEmpty() ? tr("Notes") : title);
    setWindowIcon(ScreenIcon(QStringLiteral("notes")));
    memNotes->setObjectName(QStringLiteral("memNotes"));
    memNotes->setAccessibleName(tr("Notes"));
    memNotes->setTabChangesFocus(true);
    lblWho->setObjectName(QStringLiteral("lblWho"));
    lblWho->setTextFormat(Qt::PlainText);
    lblWho->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("btnOK"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("btnCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // Enter alone makes a new line in the text.
    auto *save = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this);
    connect(save, &QShortcut::activated, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(memNotes, 1);
    layout->addWidget(lblWho);
    layout->addWidget(buttons);
    resize(520, 360);
    if (ScreenHost()) {
        const QVariantMap layoutBefore = ScreenHost()->LoadLayout(objectName());
        if (!layoutBefore.isEmpty())
            resize(layoutBefore.value(QStringLiteral("width")).toInt(),
                   layoutBefore.value(QStringLiteral("height")).toInt());
    }
    ShowNote(ReadNote(table_, recordId_));
    memNotes->moveCursor(QTextCursor::End);
    memNotes->setFocus();
}

void TNotesForm::ShowNote(const TNote &note)
{
    read_ = note;
    memNotes->setPlainText(note.text);
    const auto who = [](const QString &what, const QString &name, const QDateTime &when) {
        const QString at = when.toString(QStringLiteral("dd/MM/yyyy HH:mm"));
        return name.isEmpty() ? QStringLiteral("%1 %2").arg(what, at) : tr("%1 by %2 on %3").arg(what, name, at);
    };
    QStringList parts;
    if (note.created.isValid())
        parts.append(who(tr("Created"), note.createdBy, note.created));
    if (note.changed.isValid())
        parts.append(who(tr("Changed"), note.changedBy, note.changed));
    lblWho->setText(parts.join(QStringLiteral(", ")));
}

void TNotesForm::done(int result)
{
    if (result == Accepted) {
        try {
            if (!Save())
                return;
        } catch (const TDbError &error) {
            ShowException(error);
            return;
        }
    }
    if (ScreenHost())
        ScreenHost()->SaveLayout(objectName(),
                                 {{QStringLiteral("width"), width()}, {QStringLiteral("height"), height()}});
    QDialog::done(result);
}

// False: back to editing.
bool TNotesForm::Save()
{
    TNote theirs;
    while (!WriteUnlessChanged(theirs)) {
        const QString text = theirs.id == 0 ? tr("Another user has deleted this note while you were editing it.")
                                            : tr("Another user has changed this note while you were editing it.");
        const QString details = theirs.id == 0 ? QString() : tr("It now reads:\n%1").arg(theirs.text);
        const QStringList answers{tr("&Back to Editing"),
                                  theirs.id == 0 ? tr("&Leave It Deleted") : tr("&Keep the Other's"),
                                  tr("&Write Mine")};
        switch (ChoiceMessage(text, details, answers, 0)) {
        case 1:
            return true;
        case 2:
            read_ = theirs;
            break;
        default:
            return false;
        }
    }
    return true;
}

// Writes in one transaction, unless the note is not as it was read; then `theirs` is what stands there now.
bool TNotesForm::WriteUnlessChanged(TNote &theirs)
{
    const QString text = memNotes->toPlainText();
    const bool blank = text.trimmed().isEmpty();
    // The box ends lines in its own way: a text that nobody touched is not a change.
    if (!memNotes->document()->isModified() || (blank ? read_.id == 0 : text == read_.text))
        return true;

    TDbConnection &database = MainConnection();
    TDbTransaction transaction(database);
    // Takes the row's lock before it is read: two people who save at the same moment then do so one after the other.
    database.Execute(QStringLiteral("update dbo._btblNotes set fNOTETBLTableID = fNOTETBLTableID "
                                    "where cNOTETBLTableName = :table and fNOTETBLTableID = :id"),
                     NoteKey(table_, recordId_));
    theirs = ReadNote(table_, recordId_);
    if (!theirs.SameAs(read_))
        return false;

    const QVariant agent = CurrentAgentID() != 0 ? QVariant(CurrentAgentID()) : QVariant(QMetaType(QMetaType::Int));
    const QVariant now = QDateTime::currentDateTime();
    if (blank) {
        database.Execute(QStringLiteral("delete from dbo._btblNotes where idNotes = :note"),
                         {{QStringLiteral("note"), read_.id}});
    } else if (read_.id != 0) {
        database.Execute(
            QStringLiteral("update dbo._btblNotes set cNote = :text, iChangeAgentID = :agent, dChanged = :now "
                           "where idNotes = :note"),
            {{QStringLiteral("text"), text},
             {QStringLiteral("agent"), agent},
             {QStringLiteral("now"), now},
             {QStringLiteral("note"), read_.id}});
    } else {
        TDbParams params = NoteKey(table_, recordId_);
        params.insert({{QStringLiteral("text"), text}, {QStringLiteral("agent"), agent}, {QStringLiteral("now"), now}});
        database.Execute(
            QStringLiteral("insert into dbo._btblNotes (cNOTETBLTableName, fNOTETBLTableID, cNote, iCreateAgentID, "
                           "dCreated) values (:table, :id, :text, :agent, :now)"),
            params);
    }
    transaction.Commit();
    return true;
}

} // namespace

// A list and a dialog show the same form; only what its caller does afterwards differs.
void DoNotesForm(const QString &table, int id, bool, const QString &title)
{
    TNotesForm form(table, id, title);
    form.exec();
}

bool NoteExists(const QString &table, int id)
{
    const TDbRows rows =
        MainConnection().Select(QStringLiteral("select idNotes from dbo._btblNotes "
                                               "where cNOTETBLTableName = :table and fNOTETBLTableID = :id"),
                                NoteKey(table, id));
    return !rows.isEmpty();
}
