// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include "framework/Kvglobal.h"
#include "framework/editors/Editors.h"
#include "framework/grid/MemoryGrid.h"
#include "tests/support/TestSupport.h"

// A database with the published scales, the host's control window and the host.
struct TTaxWorld
{
    TTemplateDatabase database;
    TNotificationRecorder control;
    TMemoryScreenHost host;

    explicit TTaxWorld(int country = 5)
        : database(TTemplateDatabase::Content::Empty, country)
    {
        database.SetDefault("EndTaxYear", 2027);
    }

    QWidget &OpenList(uint message)
    {
        SendToPackage(message, 0, 0);
        return *host.Screens.last();
    }
    QString Log()
    {
        control.Process();
        return control.TakeLog();
    }
};

inline int Count(const QString &table, const QString &where = "1 = 1")
{
    return ValueOf(QString("select count(*) as n from %1 where %2").arg(table, where)).toInt();
}

inline int AddTaxScale(int id, const QString &code, int year = 2027, int country = 5, const QString &medicareCode = {})
{
    MainConnection().Execute(
        "insert into _iptblTaxScales (idTaxScales, cCode, cDescription, bUserDefinable, iCountry, iTaxYear, "
        "cMedicareScaleCode) values (:id, :code, :text, 1, :country, :year, :medicare)",
        {{"id", id},
         {"code", code},
         {"text", "About " + code},
         {"country", country},
         {"year", year},
         {"medicare", medicareCode.isNull() ? QString("") : medicareCode}});
    return id;
}

inline void AddTaxBracket(int id, int scale, const QString &code, double below, double a, double b, int year = 2027)
{
    MainConnection().Execute(
        "insert into _iptblTaxBrackets (idTaxBrackets, iTaxScalesID, cTaxScaleCode, iBracketTaxYear, "
        "TaxBracket, TaxPercentage, TaxAmount, CoefficientC) values (:id, :scale, :code, :year, :below, "
        ":a, :b, 0)",
        {{"id", id}, {"scale", scale}, {"code", code}, {"year", year}, {"below", below}, {"a", a}, {"b", b}});
}

inline QList<QStringList> BracketsOf(int scale)
{
    return RowsOf("select idTaxBrackets, cTaxScaleCode, iBracketTaxYear, TaxBracket, TaxPercentage, TaxAmount "
                  "from _iptblTaxBrackets where iTaxScalesID = :id order by idTaxBrackets",
                  {{"id", scale}});
}

inline void Press(QDialog &dialog, const char *button)
{
    Click(FindControl<QPushButton>(&dialog, button));
}

inline void TypeInto(QDialog &dialog, const char *control, const QString &text)
{
    Type(FindControl<QWidget>(&dialog, control), text);
}

inline TqsMemoryGrid &BracketGrid(QDialog &dialog)
{
    return FindControl<TqsMemoryGrid>(&dialog, "grdBrackets");
}

// What stands in a grid's visible columns, headings first.
inline QList<QStringList> Shown(const QTableView &grid)
{
    QList<QStringList> rows;
    for (int row = -1; row < grid.model()->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < grid.model()->columnCount(); ++column) {
            if (!grid.isColumnHidden(column)) {
                cells += (row < 0 ? grid.model()->headerData(column, Qt::Horizontal)
                                  : grid.model()->index(row, column).data())
                             .toString();
            }
        }
        rows += cells;
    }
    return rows;
}

inline QStringList ShownCodes(const QTableView &grid)
{
    QStringList codes;
    for (const QStringList &row : Shown(grid).mid(1))
        codes += row.value(0);
    return codes;
}

// Makes the database refuse an operation ("insert", "delete") on a table, as a full disk or a server's rule would.
inline void Refuse(const QString &file, const QString &operation, const QString &table)
{
    const QString name = "refusing";
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", name);
        other.setDatabaseName(file);
        if (!other.open() ||
            other
                .exec(QString("create trigger tRefuse before %1 on %2 begin select raise(abort, 'Refused'); end")
                          .arg(operation, table))
                .lastError()
                .isValid())
            throw std::runtime_error(other.lastError().text().toStdString());
    }
    QSqlDatabase::removeDatabase(name);
}
// What the user is then told.
inline const char kRefused[] = "The statement conflicted with the CHECK constraint \"\".";

// The bracket dialog as the next window: types what is not null and presses OK.
inline void EnterBracket(TUserScript &script, const QString &earnings, const QString &a = {}, const QString &b = {})
{
    script.Dialog("TfrmIPTaxBracketsAddDlg", [=](QDialog &dialog) {
        for (const auto &[control, text] :
             {std::pair("edtWeeklyEarnings", earnings), {"edtCoefficientA", a}, {"edtCoefficientB", b}}) {
            if (!text.isNull())
                TypeInto(dialog, control, text);
        }
        PressOK(dialog);
    });
}
