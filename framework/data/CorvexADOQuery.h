// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDate>
#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

#include "framework/Export.h"
#include "framework/data/Database.h"

class TCorvexADOQuery;

// One column of a record: its name, its type's rules for NULL, blank and limit, and the way to its value.
class CORVEX_API TColumnBase
{
public:
    TColumnBase(TCorvexADOQuery &query, const char *field, int limit = 0);
    virtual ~TColumnBase() = default;
    TColumnBase(const TColumnBase &) = delete;
    TColumnBase &operator=(const TColumnBase &) = delete;

    const QString &Field() const { return field_; }
    int Limit() const { return limit_; } // characters; 0 when there is none
    bool IsNull() const;
    void SetNull();
    QVariant Variant() const;
    void SetVariant(const QVariant &value);
    // The value a new record starts with.
    virtual QVariant Blank() const = 0;
    // A value as this column holds it: of its own type (dates as midnight QDateTime), invalid for NULL.
    virtual QVariant Normalised(const QVariant &value) const = 0;

protected:
    TCorvexADOQuery &query_;

private:
    friend class TCorvexADOQuery;
    QString field_;
    int limit_;
};

// T: QString, int, bool, double, QDate. NULL reads as the type's empty value ("" / 0 / false / 0.0 / invalid date);
// an invalid QDate is written as NULL, everything else as it is (an empty text stays an empty text).
// Set with what Get gives leaves the column as it is, so that a form which only shows a NULL does not overwrite it; Set
// throws TDbError while the record is not being edited.
template <class T> class Column final : public TColumnBase
{
public:
    using TColumnBase::TColumnBase;
    T Get() const;
    void Set(const T &value);
    QVariant Blank() const override;
    QVariant Normalised(const QVariant &value) const override;
};
extern template class CORVEX_API Column<QString>;
extern template class CORVEX_API Column<int>;
extern template class CORVEX_API Column<bool>;
extern template class CORVEX_API Column<double>;
extern template class CORVEX_API Column<QDate>;

// What somebody else changed between our reading of a record and our saving of it.
struct CORVEX_API TRecordConflict : public std::exception
{
    struct Field
    {
        QString field;   // column name
        QVariant read;   // as we read it
        QVariant theirs; // as it stands now
        QVariant mine;   // as we want to write it; equal to `read` when we did not touch it
    };
    bool gone = false;   // the record was deleted
    QList<Field> fields; // those that the other changed
    const char *what() const noexcept override { return "the record was changed by another user"; }
};

// What a list query is read from. `from` is a table, a view, a join or a table function call; `key` is the integer key
// column.
struct TListSource
{
    QString from;
    QStringList columns; // to select besides the grid's own
    QString key;
    QString where; // without the word; may hold :names
    TDbParams params;
};

// The grid behind a list query, as the data layer sees it.
class CORVEX_API TListControl
{
public:
    virtual ~TListControl() = default;
    virtual void OpenList(const TListSource &source) = 0;
    // Reads again. With `locate`, focuses the row whose key is `key` and scrolls to it; otherwise keeps the place.
    virtual void ReReadList(const TListSource &source, bool locate, int key) = 0;
    virtual bool HasCurrent() const = 0;
    virtual QVariant CurrentValue(QStringView field) const = 0; // of the focused row
};

// A record class: the base of every entity's query. It works on one record (dialogs), on a small set of child rows, or,
// bound to a list control, on the focused row of a list: the getters read that row until records of its own are read or
// edited, and again after the list is opened or refreshed.
class CORVEX_API TCorvexADOQuery : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString _TableName READ TableName WRITE SetTableName)
    Q_PROPERTY(QString _FromTables READ FromTables WRITE SetFromTables)
    Q_PROPERTY(QString _SelectFields READ SelectFields WRITE SetSelectFields)
    Q_PROPERTY(QString _LinkNotesField READ LinkNotesField WRITE SetLinkNotesField)
    Q_PROPERTY(bool _UseDefaultSQL READ UseDefaultSQL WRITE SetUseDefaultSQL)
    Q_PROPERTY(bool _OpenAfterLoad READ OpenAfterLoad WRITE SetOpenAfterLoad)

public:
    enum class Keys {
        Server, // identity: the server makes the key
        Client  // the caller sets the key before brPost (see GetIdxKey)
    };
    TCorvexADOQuery(const QString &tableName, const QString &keyField, Keys keys = Keys::Server,
                    QObject *owner = nullptr);
    ~TCorvexADOQuery() override;

    // ---- what it reads and writes
    QString TableName() const; // the table written
    void SetTableName(const QString &name);
    QString KeyField() const;
    QString FromTables() const; // the table or view read by a list; the written table when empty
    void SetFromTables(const QString &from);
    QString SelectFields() const; // comma-separated columns that a list always selects
    void SetSelectFields(const QString &fields);
    QString LinkNotesField() const; // the id column that notes attach to
    void SetLinkNotesField(const QString &field);
    QString NotesTableName() const; // the table name under which notes are kept: the written table, upper case
    // Whether OpenList and brRefresh build the list's statement from these properties; a screen that turns it off opens
    // its grid itself.
    bool UseDefaultSQL() const;
    void SetUseDefaultSQL(bool use);
    bool OpenAfterLoad() const;
    void SetOpenAfterLoad(bool open);
    // A list's fixed filter, without WHERE; replaces the one before.
    void SetFilter(const QString &where, const TDbParams &params = {});
    void SetSelectControlCols(TListControl *control); // not owned

    // ---- as a list
    void OpenList();
    // Reads the list again and keeps its place; with `locate`, a `keyField` and a `keyValue`, focuses the row with that
    // key. Without a list control it reads the selected records again and stands on that one, when it is still there.
    void brRefresh(bool locate, const QString &keyField, const QString &keyValue);

    // ---- as records
    // Reads the rows with keyField = id (none for id 0), in key order, and stands on the first. `append` keeps the rows
    // read before. An edit under way is dropped; when reading fails everything stays as it was.
    void SelectRecords(const QString &keyField, int id, bool append);
    // Reads the rows that meet a criterion, in the given order ("" = key order).
    void SelectWhere(const QString &where, const TDbParams &params = {}, const QString &orderBy = {});
    int RecordCount() const;
    bool IsEmpty() const { return RecordCount() == 0; }
    void First();
    bool Next();      // false when it stood on the last
    bool Eof() const; // true after Next gave false, and without records
    // Of the current record; 0 when there is none, and for a new record before the server (Post) or the caller
    // (SetKeyValue) gave it one.
    int KeyValue() const;
    // For a new record of Keys::Client only; throws TDbError otherwise.
    void SetKeyValue(int key);

    // ---- editing the current record. One record is edited at a time.
    // Begin a new record, every column at its blank value. The argument is kept for callers' texts and has no effect.
    void brAppend(bool = true);
    // Begin changing the current record. It stays compared with what was read when it was selected. While an edit or an
    // append is under way already, that one goes on.
    void brEdit(bool = true);
    bool IsEditing() const;
    bool IsAppending() const;
    bool IsModified() const; // some column differs from what was read
    // Writes the changed columns (all of them for a new record) and leaves edit state; KeyValue() then holds the key.
    // Throws TRecordConflict when somebody changed or deleted the row since it was read (edit state is kept), TDbError
    // on any other failure (edit state is kept too, a new record's key is 0 again; the caller cancels). Uses the
    // caller's transaction, or one of its own. Without changes nothing is written, but a deleted row is still a
    // conflict.
    void Post();
    // Post with the error shown to the user in a box: true when written. Without `showError` it is thrown.
    // TRecordConflict passes in any case.
    bool brPost(bool showError = true);
    // Throws TRecordConflict as Post does, and writes nothing (nothing happens for a new record). For records that are
    // written in another way than by Post.
    void CheckUnchanged() const;
    // Drops pending changes.
    void Cancel();
    // After a conflict: takes the row as it stands now as the one that was read, so that the next Post writes mine.
    // Columns that I did not change take their value. When the row is gone the record becomes a new one with my values;
    // it keeps its key if the key is the client's.
    void AcceptTheirsAsRead(const TRecordConflict &conflict);

    // ---- tests and statements beside the record
    // Whether the written table has a row with field = id, or one that meets a criterion.
    bool RecordsExist(const QString &field, int id) const;
    bool RecordsExistCriteria(const QString &criteria, const TDbParams &params = {}) const;
    // Runs a statement on the shared connection. With `showError` a failure is shown and gives false; else it throws.
    bool ExecuteThisSQL(const QString &sql, bool showError, const TDbParams &params = {}) const;

    // Column by field name (case-insensitive); nullptr when there is none.
    TColumnBase *FindColumn(QStringView field) const;
    const QList<TColumnBase *> &Columns() const;

private:
    friend class TColumnBase;
    template <class T> friend class Column;
    void AddColumn(TColumnBase *column);
    TListSource ListSource() const;
    void DropRecords();
    QVariant CurrentValue(const TColumnBase &column) const;
    void SetCurrentValue(const TColumnBase &column, const QVariant &value);
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// A stored procedure with its arguments.
class CORVEX_API TCorvexADOStoredProc : public QObject
{
    Q_OBJECT
public:
    explicit TCorvexADOStoredProc(const QString &procedure, QObject *owner = nullptr);
    ~TCorvexADOStoredProc() override;
    // Names are with or without '@'.
    void SetParam(const QString &name, const QVariant &value);
    // In and out; a value that is not set yet must be a typed NULL.
    void SetInOutParam(const QString &name, const QVariant &value);
    QVariant Param(const QString &name) const; // after execution: the output value
    int ReturnValue() const;
    // Runs it. True on success; on failure the error has been shown when `showError`, else it is thrown.
    bool kvExecProc(bool showError = true);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The larger of the table's highest key (0 when it is empty) and `floor`, plus 1: keys up to 50000 belong to records
// supplied with the system. Run inside the transaction that writes the record.
CORVEX_API int GetIdxKey(const QString &keyField, const QString &table, int floor = 50000);

// How the data layer shows an error to the user; set by the forms layer (nothing is shown, only logged, before).
using TErrorPresenter = std::function<void(const QString &text)>;
CORVEX_API void SetErrorPresenter(TErrorPresenter presenter);
// Logs the error with its statement (category "corvex.data", critical) and shows it in words that a user can act on.
CORVEX_API void PresentError(const TDbError &error);

// One line a column: the typed pair (GetCode/SetCode) and the column object that a dialog binds a control to.
#define CORVEX_COLUMN(Type, Name, field, ...)                                                                          \
    Column<Type> Name{*this, field __VA_OPT__(, ) __VA_ARGS__};                                                        \
    Type Get##Name() const                                                                                             \
    {                                                                                                                  \
        return Name.Get();                                                                                             \
    }                                                                                                                  \
    void Set##Name(const Type &value)                                                                                  \
    {                                                                                                                  \
        Name.Set(value);                                                                                               \
    }
#define TEXT_COLUMN(Name, field, limit) CORVEX_COLUMN(QString, Name, field, limit)
#define INT_COLUMN(Name, field) CORVEX_COLUMN(int, Name, field)
#define BOOL_COLUMN(Name, field) CORVEX_COLUMN(bool, Name, field)
#define FLOAT_COLUMN(Name, field) CORVEX_COLUMN(double, Name, field)
#define DATE_COLUMN(Name, field) CORVEX_COLUMN(QDate, Name, field)
