// SPDX-License-Identifier: Apache-2.0
#include "framework/grid/qsGrid.h"
#include "tests/tax/TaxWorld.h"

namespace {

// The two kinds of study loan scales: near copies of each other, with differences that matter.
struct TKind
{
    const char *name;
    uint list, dialog, changed;
    const char *form, *grid;
    const char *scales, *scaleKey, *brackets, *bracketKey, *owner;
    int dialogHelp;
    QStringList headings;
    QString added, edited, copied; // captions, of scale X
    QString saveFirst, deleteScale, deleteBracket;
    bool coefficientB;
};

const TKind &Kind(const QString &name)
{
    static const TKind stsl{"STSL",
                            9252,
                            9253,
                            9254,
                            "TfrmIPHECSScalesAddDlg",
                            "grdHECSScales",
                            "_iptblHECSScales",
                            "idHECSScales",
                            "_iptblHECSBrackets",
                            "idHECSBrackets",
                            "iHECSScalesID",
                            104290,
                            {"Code", "Description", "Tax Year"},
                            "Add New STSL Scale",
                            "Edit Study and Training Support Loan (STSL) Scale \"X\"",
                            "Copy STSL Scale \"X\"",
                            "You must save this STSL Scale before continuing.\nDo you want to save it now?",
                            "Delete STSL Scale \"X\"",
                            "Are you sure you want to delete this STSL Bracket?",
                            true};
    static const TKind sfss{"SFSS",
                            9237,
                            9238,
                            9239,
                            "TfrmSFSSScalesDlg",
                            "grdSFSSScales",
                            "_iptblSFSSScales",
                            "idSFSSScales",
                            "_iptblSFSSBrackets",
                            "idSFSSBrackets",
                            "iSFSSScalesID",
                            104390,
                            {"Code", "Description"},
                            "Add SFSS Scales",
                            "Edit SFSS Scales \"X\"",
                            "Copy SFSS Scales \"X\"",
                            "You must save this Help/HECS Scale before continuing.\nDo you want to save it now?",
                            "Delete SFSS Scale \"X\"",
                            "Are you sure you want to delete this SFSS Bracket?",
                            false};
    return name == "STSL" ? stsl : sfss;
}

void AddScale(const TKind &kind, int id, const QString &code, int year = 2027)
{
    MainConnection().Execute(
        QString("insert into %1 (%2, cCode, cDescription, iTaxYear) values (:id, :code, 'Text', :year)")
            .arg(kind.scales, kind.scaleKey),
        {{"id", id}, {"code", code}, {"year", year}});
}

void AddBracket(const TKind &kind, int id, int scale, double earnings, double a, int year = 2027)
{
    MainConnection().Execute(QString("insert into %1 (%2, %3, iTaxYear, fWeeklyEarnings, CoefficientA) "
                                     "values (:id, :scale, :year, :earnings, :a)")
                                 .arg(kind.brackets, kind.bracketKey, kind.owner),
                             {{"id", id}, {"scale", scale}, {"year", year}, {"earnings", earnings}, {"a", a}});
}

QList<QStringList> Brackets(const TKind &kind)
{
    return RowsOf(QString("select %1, %2, iTaxYear, fWeeklyEarnings, CoefficientA%3 from %4 order by %1")
                      .arg(kind.bracketKey, kind.owner, kind.coefficientB ? ", CoefficientB" : "", kind.brackets));
}

void Empty(const TKind &kind)
{
    MainConnection().Execute(QString("delete from %1").arg(kind.brackets));
    MainConnection().Execute(QString("delete from %1").arg(kind.scales));
}

} // namespace

class t_loan_scales final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void list_data() { Kinds(); }
    void list();
    void captions_data() { Kinds(); }
    void captions();
    void nothingIsChecked_data() { Kinds(); }
    void nothingIsChecked();
    void saveFirst_data() { Kinds(); }
    void saveFirst();
    void bracketsAreRewritten_data() { Kinds(); }
    void bracketsAreRewritten();
    void copyHasItsOwnBrackets_data() { Kinds(); }
    void copyHasItsOwnBrackets();
    void deleteFlow_data();
    void deleteFlow();

private:
    static void Kinds()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("STSL") << "STSL";
        QTest::newRow("SFSS") << "SFSS";
    }
};

void t_loan_scales::list()
{
    QFETCH(QString, name);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    Empty(kind);
    AddScale(kind, 10, "B");
    AddScale(kind, 11, "A");
    AddScale(kind, 12, "OLD", 2026);
    QWidget &list = world.OpenList(kind.list);
    auto &grid = FindControl<TqsGrid>(&list, kind.grid);
    QCOMPARE(Shown(grid).first(), kind.headings);
    QCOMPARE(ShownCodes(grid), (QStringList{"A", "B"}));
    world.database.SetDefault("EndTaxYear", 2026);
    BroadcastChange(kind.changed, 0);
    world.control.Process();
    QCOMPARE(ShownCodes(grid), QStringList{"OLD"});

    TUserScript script;
    script.Dialog(kind.form, [](QDialog &dialog) {
        QTest::keyClick(&dialog, Qt::Key_F1);
        PressCancel(dialog);
    });
    Trigger(list, "mniMaintEdit");
    VERIFY_SCRIPT(script);
    QCOMPARE(world.host.HelpContexts, QList<int>{kind.dialogHelp});
}

void t_loan_scales::captions()
{
    QFETCH(QString, name);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    AddScale(kind, 10, "X");
    AddBracket(kind, 1, 10, 100, 0.1234);
    QStringList titles, bracketTitles;
    QList<QStringList> shown;
    TUserScript script;
    for (const auto &[id, copy] : {std::pair(0, 0), {10, 1}, {10, 0}}) {
        script.Dialog(kind.form, [&](QDialog &dialog) {
            titles += dialog.windowTitle();
            shown = Shown(BracketGrid(dialog));
            if (titles.size() == 3) {
                Press(dialog, "btnEdit");
                Press(dialog, "btnAdd");
            }
            PressCancel(dialog);
        });
        if (titles.size() == 2) {
            for (int i = 0; i < 2; ++i) {
                script.Dialog("TfrmIPTaxBracketsAddDlg", [&](QDialog &dialog) {
                    bracketTitles += dialog.windowTitle();
                    QCOMPARE(FindControl<QWidget>(&dialog, "edtCoefficientB").isEnabled(), kind.coefficientB);
                    PressCancel(dialog);
                });
            }
        }
        SendToPackage(kind.dialog, id, copy);
    }
    VERIFY_SCRIPT(script);
    QCOMPARE(titles, (QStringList{kind.added, kind.copied, kind.edited}));
    QCOMPARE(bracketTitles, (QStringList{"Edit Bracket \"100.00\"", "Add New Bracket"}));
    QStringList headings{"Weekly Earnings", "Coefficient A"}, row{"100.00", "0.1234"};
    if (kind.coefficientB) {
        headings += "Coefficient B";
        row += "0.0000";
    }
    QCOMPARE(shown, (QList<QStringList>{headings, row}));
}

void t_loan_scales::nothingIsChecked()
{
    QFETCH(QString, name);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    Empty(kind);
    AddScale(kind, 12, "X");
    TUserScript script;
    for (const char *code : {"", "X", " a'b "}) {
        script.Dialog(kind.form, [=](QDialog &dialog) {
            TypeInto(dialog, "edtCode", code);
            TypeInto(dialog, "edtDescription", code);
            PressOK(dialog);
        });
        SendToPackage(kind.dialog, 0, 0);
    }
    // An existing scale's code may be changed.
    script.Dialog(kind.form, [](QDialog &dialog) {
        TypeInto(dialog, "edtCode", "1234567890123");
        PressOK(dialog);
    });
    SendToPackage(kind.dialog, 12, 0);
    VERIFY_SCRIPT(script);
    QCOMPARE(
        RowsOf(QString("select %1, cCode, cDescription, iTaxYear from %2 order by %1").arg(kind.scaleKey, kind.scales)),
        (QList<QStringList>{{"12", "1234567890", "Text", "2027"},
                            {"50001", "", "", "2027"},
                            {"50002", "X", "X", "2027"},
                            {"50003", "a'b", "a'b", "2027"}}));
    QCOMPARE(world.Log(), QString("%1:50001 %1:50002 %1:50003 %1:12").arg(kind.changed));
}

void t_loan_scales::saveFirst()
{
    QFETCH(QString, name);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    Empty(kind);
    TUserScript script;
    script.Dialog(kind.form, [&](QDialog &dialog) {
        Press(dialog, "btnAdd");
        Press(dialog, "btnAdd");
        QCOMPARE(dialog.windowTitle(), QString(kind.edited).replace("X", ""));
        PressOK(dialog);
    });
    script.Box(kind.saveFirst, QMessageBox::No);
    script.Box(kind.saveFirst, QMessageBox::Yes);
    EnterBracket(script, "100", "0.01", kind.coefficientB ? QString("-2.5") : QString());
    SendToPackage(kind.dialog, 0, 0);
    VERIFY_SCRIPT(script);
    QStringList bracket{"1", "50001", "2027", "100", "0.01"}; // bracket keys start at 1, those of scales at 50001
    if (kind.coefficientB)
        bracket += "-2.5";
    QCOMPARE(Brackets(kind), QList<QStringList>{bracket});
    QCOMPARE(world.Log(), QString("%1:50001 %1:50001").arg(kind.changed));
}

void t_loan_scales::bracketsAreRewritten()
{
    QFETCH(QString, name);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    Empty(kind);
    AddScale(kind, 10, "X", 2026); // keeps its year
    AddBracket(kind, 3, 10, 200, 0.02, 2026);
    AddBracket(kind, 4, 10, 100, 0.01, 2026);
    AddBracket(kind, 5, 10, 100, 0.05, 2027);
    AddBracket(kind, 6, 11, 300, 0.03, 2026);
    TUserScript script;
    script.Dialog(kind.form, [&](QDialog &dialog) {
        TqsMemoryGrid &grid = BracketGrid(dialog);
        QCOMPARE(ShownCodes(grid), (QStringList{"100.00", "200.00"}));
        Press(dialog, "btnAdd");
        grid.FocusRow(0);
        Press(dialog, "btnDelete");
        PressOK(dialog);
    });
    EnterBracket(script, "150", "0.015");
    script.Box(kind.deleteBracket, QMessageBox::Yes);
    SendToPackage(kind.dialog, 10, 0);
    VERIFY_SCRIPT(script);
    QList<QStringList> brackets;
    for (const QStringList &row : Brackets(kind))
        brackets += row.mid(0, 5);
    QCOMPARE(brackets, (QList<QStringList>{{"5", "10", "2027", "100", "0.05"},
                                           {"6", "11", "2026", "300", "0.03"},
                                           {"7", "10", "2026", "150", "0.015"},
                                           {"8", "10", "2026", "200", "0.02"}}));
}

void t_loan_scales::copyHasItsOwnBrackets()
{
    QFETCH(QString, name);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    Empty(kind);
    AddScale(kind, 10, "X", 2026);
    AddBracket(kind, 3, 10, 200, 0.02, 2026);
    TUserScript script;
    script.Dialog(kind.form, [](QDialog &dialog) { PressOK(dialog); });
    SendToPackage(kind.dialog, 10, 1);
    VERIFY_SCRIPT(script);
    QList<QStringList> brackets;
    for (const QStringList &row : Brackets(kind))
        brackets += row.mid(0, 5);
    QCOMPARE(brackets, (QList<QStringList>{{"3", "10", "2026", "200", "0.02"}, {"4", "50001", "2027", "200", "0.02"}}));
}

void t_loan_scales::deleteFlow_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("refused"); // table that the database refuses to delete from
    QTest::addColumn<int>("scales");      // left
    QTest::addColumn<int>("brackets");
    for (const char *name : {"STSL", "SFSS"}) {
        const TKind &kind = Kind(name);
        QTest::addRow("%s", name) << name << "" << 0 << 0;
        QTest::addRow("%s, the scale stays and so do its brackets", name) << name << kind.scales << 1 << 2;
        QTest::addRow("%s, the scale goes without its brackets", name) << name << kind.brackets << 0 << 2;
    }
}

void t_loan_scales::deleteFlow()
{
    QFETCH(QString, name);
    QFETCH(QString, refused);
    const TKind &kind = Kind(name);
    TTaxWorld world;
    Empty(kind);
    AddScale(kind, 10, "X");
    AddBracket(kind, 1, 10, 100, 0.1);
    AddBracket(kind, 2, 10, 100, 0.1, 2026);
    QWidget &list = world.OpenList(kind.list);
    ShowActive(list);
    if (!refused.isEmpty())
        Refuse(world.database.FileName(), "delete", refused);
    TUserScript script;
    script.Box(kind.deleteScale, QMessageBox::No);
    script.Box(kind.deleteScale, QMessageBox::Yes);
    if (!refused.isEmpty())
        script.Box(kRefused);
    Trigger(list, "mniMaintDelete");
    Trigger(list, "mniMaintDelete");
    VERIFY_SCRIPT(script);
    QTEST(Count(kind.scales), "scales");
    QTEST(Count(kind.brackets), "brackets");
    QCOMPARE(world.Log(), refused == kind.scales ? QString() : QString("%1:0").arg(kind.changed));
}

QTEST_MAIN(t_loan_scales)
#include "t_loan_scales.moc"
