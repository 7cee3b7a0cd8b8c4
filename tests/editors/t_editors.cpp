// SPDX-License-Identifier: Apache-2.0
#include <QAbstractItemView>
#include <QSignalSpy>
#include <QVBoxLayout>

#include "framework/editors/Editors.h"
#include "tests/support/TestSupport.h"

namespace {

// A control between two others, in an active window.
template <class Control> struct TBench
{
    QWidget window;
    QLineEdit before, after;
    Control control;

    template <class... Args>
    explicit TBench(Args &&...args)
        : control(std::forward<Args>(args)...)
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(&before);
        layout->addWidget(&control);
        layout->addWidget(&after);
        QWidget::setTabOrder(&before, &control);
        QWidget::setTabOrder(&control, &after);
    }
    ~TBench()
    {
        for (QWidget *part : std::initializer_list<QWidget *>{&before, &control, &after})
            part->setParent(nullptr);
    }
    void Show()
    {
        ShowActive(window);
        before.setFocus();
    }
    void Enter() { QTest::keyClick(&before, Qt::Key_Tab); }
    void Leave() { after.setFocus(); }
};

enum class Way { Type, Paste, Code };

void Enter(QLineEdit &edit, Way way, const QString &text)
{
    if (way == Way::Type)
        Type(edit, text);
    else if (way == Way::Paste)
        Paste(edit, text);
    else
        edit.setText(text);
}

void FillBanks(int count)
{
    TDbTransaction transaction(MainConnection());
    for (int i = 1; i <= count; ++i) {
        MainConnection().Execute("insert _iptblBanks (cCode, cBankName, cBSBNumber) values (:code, :name, :bsb)",
                                 {{"code", QStringLiteral("B%1").arg(i, 5, 10, QLatin1Char('0'))},
                                  {"name", QStringLiteral("Name %1").arg(count - i)},
                                  {"bsb", QStringLiteral("%1").arg(100000 + i)}});
    }
    transaction.Commit();
}

TLookupSource Banks()
{
    return {.from = "_iptblBanks",
            .key = "idBank",
            .columns = {{"cCode", "Code"}, {"cBSBNumber", "BSB"}, {"cBankName", "Bank"}},
            .where = {},
            .params = {},
            .orderBy = {}};
}

int BankId(const QString &code)
{
    return ValueOf("select idBank from _iptblBanks where cCode = :code", {{"code", code}}).toInt();
}

} // namespace

class t_editors final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void numbers_data();
    void numbers();
    void numberSetByCode();
    void numberInTheFirstField();
    void numberTellsChangesOnce();
    void hours_data();
    void hours();
    void hoursKeepWhatWasSet();
    void masks_data();
    void masks();
    void maskShowsWhatDoesNotFit();
    void maskStandsOnFirstOpenPosition();
    void dates();
    void dateTyping();
    void checkList();
    void radioGroup();
    void lookupHoldsAllOfAShortList();
    void lookupKeepsAnUnknownId();
    void lookupByKeyboard();
    void lookupOfManyRows();
    void lookupPopup();
    void lookupSourceChanges();
};

void t_editors::numbers_data()
{
    QTest::addColumn<int>("decimals");
    QTest::addColumn<double>("maximum"); // 0: none
    QTest::addColumn<Way>("way");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("shown"); // after leaving

    const auto row = [](const char *name, int decimals, double maximum, Way way, const char *text, double value,
                        const char *shown) {
        QTest::newRow(name) << decimals << maximum << way << QString::fromUtf8(text) << value
                            << QString::fromUtf8(shown);
    };
    row("typed", 2, 0, Way::Type, "12.5", 12.5, "12.50");
    row("negative", 2, 0, Way::Type, "-3.256", -3.26, "-3.26");
    row("half up", 2, 0, Way::Type, "1.005", 1.01, "1.01");
    row("half away from zero", 2, 0, Way::Type, "-1.005", -1.01, "-1.01");
    row("carry", 1, 0, Way::Type, "99.96", 100, "100.0");
    row("whole", 0, 0, Way::Type, "2.5", 3, "3");
    row("minus nothing", 2, 0, Way::Type, "-0.001", 0, "0.00");
    row("letters are not typed", 2, 0, Way::Type, "1e2x", 12, "12.00");
    row("one point only", 2, 0, Way::Type, "1.2.3", 1.23, "1.23");
    row("typed comma", 2, 0, Way::Type, "1,234", 1234, "1234.00");
    row("maximum", 2, 100, Way::Type, "100", 100, "100.00");
    row("beyond the maximum", 2, 100, Way::Type, "100.01", 100.0, "100.00");
    row("another digit beyond", 0, 100, Way::Type, "101", 10, "10");
    row("emptied", 2, 0, Way::Type, "", 0, "0.00");
    row("only a sign", 2, 0, Way::Type, "-", 0, "0.00");
    row("thousands", 2, 0, Way::Paste, " 1,234,567.891 ", 1234567.89, "1234567.89");
    row("blanks inside", 2, 0, Way::Paste, "1 234\u00a0567", 1234567, "1234567.00");
    row("percent", 2, 0, Way::Paste, "9.5 %", 9.5, "9.50");
    row("dollars", 2, 0, Way::Paste, "-$12.30", -12.3, "-12.30");
    row("trailing dollar", 2, 0, Way::Paste, "12$", 12, "12.00");
    row("decimal comma", 2, 0, Way::Paste, "1,5", 7, "7.00");
    row("exponent", 2, 0, Way::Paste, "1e5", 7, "7.00");
    row("words", 2, 0, Way::Paste, "abc", 7, "7.00");
    row("foreign digits", 2, 0, Way::Paste, "\u0661\u0662", 7, "7.00");
    row("pasted beyond", 2, 100, Way::Paste, "250", 7, "7.00");
    row("not a number", 2, 0, Way::Code, "nan", 7, "7.00");
    row("by code", 2, 0, Way::Code, "1,000.5", 1000.5, "1000.50");
    row("by code beyond", 2, 100, Way::Code, "101", 7, "7.00");
    row("far too long", 2, 0, Way::Paste, "12345678901234567890", 7, "7.00");
}

void t_editors::numbers()
{
    QFETCH(int, decimals);
    QFETCH(double, maximum);
    QFETCH(Way, way);
    QFETCH(QString, text);
    TBench<TqsNumberEdit> bench;
    TqsNumberEdit &edit = bench.control;
    edit.SetDecimals(decimals);
    if (maximum > 0)
        edit.SetMaximum(maximum);
    edit.SetValue(7);
    bench.Show();
    bench.Enter();
    Enter(edit, way, text);
    QTEST(edit.Value(), "value");
    bench.Leave();
    QTEST(edit.Value(), "value");
    QTEST(edit.text(), "shown");
}

void t_editors::numberSetByCode()
{
    TBench<TqsNumberEdit> bench;
    TqsNumberEdit &edit = bench.control;
    edit.SetSuffix("%");
    edit.SetMaximum(100);
    edit.SetDecimals(4);
    bench.Show();
    QCOMPARE(edit.text(), "0.0000%");
    edit.setText("12.34567");
    QCOMPARE(edit.text(), "12.3457%");
    edit.SetValue(150); // what a record holds is shown, allowed or not
    QCOMPARE(edit.text(), "150.0000%");
    bench.Enter();
    QCOMPARE(edit.text(), "150.0000");
    QCOMPARE(edit.selectedText(), "150.0000");
    QTest::keyClick(&edit, '8');
    QCOMPARE(edit.Value(), 8);
    edit.SetMinimum(0);
    Type(edit, "-5");
    QCOMPARE(edit.Value(), 5);
    edit.SetMinimum(-10);
    Type(edit, "-123");
    QCOMPARE(edit.Value(), -1);
    edit.SetValue(1e-7);
    QCOMPARE(edit.text(), "0.0000");
    edit.setProperty("value", 2.5);
    QCOMPARE(edit.Value(), 2.5);
    bench.Leave();
    QCOMPARE(edit.text(), "2.5000%");
    QVERIFY(edit.alignment().testFlag(Qt::AlignRight));
}

// The first field of a window gets the focus with the window's activation.
void t_editors::numberInTheFirstField()
{
    TBench<TqsNumberEdit> bench;
    bench.control.SetSuffix("%");
    bench.control.SetValue(5);
    bench.control.setFocus();
    ShowActive(bench.window);
    QCOMPARE(bench.control.text(), "5.00");
    QTest::keyClicks(&bench.control, "7");
    QCOMPARE(bench.control.Value(), 7);
}

void t_editors::numberTellsChangesOnce()
{
    TBench<TqsNumberEdit> bench;
    TqsNumberEdit &edit = bench.control;
    bench.Show();
    QSignalSpy changed(&edit, &TqsNumberEdit::ValueChanged);
    QSignalSpy finished(&edit, &QLineEdit::editingFinished);
    bench.Enter();
    Type(edit, "12");
    QCOMPARE(changed.count(), 2);
    QTest::keyClick(&edit, '.');
    edit.SetValue(12);
    bench.Leave();
    bench.Enter();
    Paste(edit, "x");
    QCOMPARE(changed.count(), 2);
    edit.setText("3");
    QCOMPARE(changed.count(), 3);
    Type(edit, "-");
    bench.Leave();
    QCOMPARE(changed.count(), 4);
    QCOMPARE(finished.count(), 2);
}

void t_editors::hours_data()
{
    QTest::addColumn<bool>("minutes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("shown");
    const auto row = [](bool minutes, const char *text, double value, const char *shown) {
        QTest::addRow("%s %s", minutes ? "h:mm" : "decimal", text)
            << minutes << QString(text) << value << QString(shown);
    };
    row(true, "7:36", 7.6, "7:36");
    row(true, "7.6", 7.6, "7:36");
    row(true, "0:05", 5 / 60.0, "0:05");
    row(true, ":30", 0.5, "0:30");
    row(true, "7:", 7, "7:00");
    row(true, "8", 8, "8:00");
    row(true, "7.999", 8, "8:00");
    row(true, "0.008", 0, "0:00");
    row(true, "-1:30", -1.5, "-1:30");
    row(true, "-:15", -0.25, "-0:15");
    row(true, "1000:45", 1000.75, "1000:45");
    row(true, "1:75", 1 + 7 / 60.0, "1:07"); // the 5 is not taken
    row(true, "1:2:3", 1 + 23 / 60.0, "1:23");
    row(true, "", 0, "0:00");
    row(false, "7.6", 7.6, "7.60");
    row(false, "7:36", 7.6, "7.60");
    row(false, "0:20", 0.33, "0.33");
    row(false, "7.125", 7.13, "7.13");
}

void t_editors::hours()
{
    TTemplateDatabase database;
    QFETCH(bool, minutes);
    QFETCH(QString, text);
    database.SetDefault("bHoursAndMinutes", minutes);
    TBench<TqsHoursEdit> bench;
    bench.Show();
    bench.Enter();
    Type(bench.control, text);
    QTEST(bench.control.Value(), "value");
    bench.Leave();
    QTEST(bench.control.Value(), "value");
    QTEST(bench.control.text(), "shown");
    QCOMPARE(HoursText(bench.control.Value()), bench.control.text());
}

void t_editors::hoursKeepWhatWasSet()
{
    TTemplateDatabase database;
    database.SetDefault("bHoursAndMinutes", true);
    TBench<TqsHoursEdit> bench;
    TqsHoursEdit &edit = bench.control;
    edit.SetValue(7.33);
    bench.Show();
    QCOMPARE(edit.text(), "7:20");
    bench.Enter();
    bench.Leave();
    QCOMPARE(edit.Value(), 7.33);
    edit.SetCountsHours(false);
    QCOMPARE(edit.text(), "7.33");
    edit.SetMaximum(24);
    Type(edit, "24:01");
    QCOMPARE(edit.Value(), 24);
}

void t_editors::masks_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<Way>("way");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("value");
    const QString bsb = QStringLiteral("000\\-000;1;_");
    const auto row = [](const char *name, const QString &mask, Way way, const char *text, const char *value) {
        QTest::newRow(name) << mask << way << QString::fromUtf8(text) << QString::fromUtf8(value);
    };
    row("digits", bsb, Way::Type, "012345", "012-345");
    row("with the literal", bsb, Way::Type, "012-345", "012-345");
    row("letters refused", bsb, Way::Type, "a1b2c3", "123-");
    row("foreign digits refused", bsb, Way::Paste, "\u0661\u0662\u0663", "");
    row("too many", bsb, Way::Type, "0123456789", "012-345");
    row("only five", bsb, Way::Type, "01234", "012-34");
    row("gap", bsb, Way::Paste, "12-345", "12-345");
    row("nothing", bsb, Way::Type, "", "");
    row("only the literal", bsb, Way::Type, "-", "");
    row("pasted", bsb, Way::Paste, " 062-000 ", "062-000");
    row("by code", bsb, Way::Code, "062000", "062-000");
    row("optional digits", "9999999999;1;_", Way::Type, "12-34", "1234");
    row("no options", "00-0000", Way::Type, "123456", "12-3456");
    row("two literals", "00-0000-0;1;_", Way::Type, "1234567", "12-3456-7");
    row("letters", "LLl-00;1;_", Way::Type, "abc12", "abc-12");
    row("upper case", ">LL<LL;1;_", Way::Type, "abCD", "ABcd");
    row("letter that Qt's masks know", "\\D00;1;_", Way::Type, "12", "D12");
    row("literal letters", "BX00;1;_", Way::Type, "12", "BX12");
    row("free characters", "ccccccccc;1;_", Way::Type, "12 a-b", "12 a-b");
    row("sign", "#00;1;_", Way::Type, "-12", "-12");
    row("no mask", "", Way::Type, " any ", "any");
}

void t_editors::masks()
{
    QFETCH(QString, mask);
    QFETCH(Way, way);
    QFETCH(QString, text);
    QFETCH(QString, value);
    TBench<TqsMaskEdit> bench;
    bench.control.SetEditMask(mask);
    QCOMPARE(bench.control.Value(), "");
    bench.Show();
    bench.Enter();
    QSignalSpy changed(&bench.control, &TqsMaskEdit::ValueChanged);
    if (way == Way::Paste) {
        bench.control.clear();
        bench.control.home(false);
    }
    if (way == Way::Type)
        QTest::keyClicks(&bench.control, text);
    else
        Enter(bench.control, way, text);
    QCOMPARE(bench.control.Value(), value);
    QCOMPARE(changed.isEmpty(), value.isEmpty());
    bench.control.SetValue("");
    QCOMPARE(bench.control.Value(), "");
    if (!value.isEmpty()) {
        bench.control.SetValue(value);
        QCOMPARE(bench.control.Value(), value);
    }
}

void t_editors::maskShowsWhatDoesNotFit()
{
    TBench<TqsMaskEdit> bench;
    bench.control.SetEditMask("000\\-000;1;_");
    bench.control.SetValue("01-0123-4567890");
    QCOMPARE(bench.control.Value(), "01-0123-4567890");
    bench.Show();
    Type(bench.control, "");
    Type(bench.control, "06200");
    QVERIFY(!bench.control.hasAcceptableInput());
    Type(bench.control, "062001");
    QCOMPARE(bench.control.Value(), "062-001");
    QVERIFY(bench.control.hasAcceptableInput());
}

void t_editors::maskStandsOnFirstOpenPosition()
{
    TBench<TqsMaskEdit> bench;
    bench.control.SetEditMask("\\(00\\) 00;1;_");
    bench.Show();
    bench.Enter();
    QCOMPARE(bench.control.cursorPosition(), 1);
    bench.Leave();
    QTest::mouseClick(&bench.control, Qt::LeftButton, {}, QPoint(bench.control.width() - 5, 5));
    QCOMPARE(bench.control.cursorPosition(), 1);
}

void t_editors::dates()
{
    TBench<TqsDateEdit> bench;
    TqsDateEdit &edit = bench.control;
    edit.setObjectName("edtStart");
    bench.Show();
    QSignalSpy changed(&edit, &TqsDateEdit::ValueChanged);
    QVERIFY(!edit.Date().isValid());
    QVERIFY(!edit.DateBox()->isEnabled());
    QVERIFY(edit.DateBox()->displayFormat().contains("yyyy"));

    bench.Enter();
    QCOMPARE(FocusName(bench.window), "edtStart");
    QTest::keyClick(edit.CheckBox(), Qt::Key_Space);
    QCOMPARE(edit.Date(), QDate::currentDate());
    QVERIFY(edit.DateBox()->isEnabled());
    QCOMPARE(changed.count(), 1);
    edit.SetDate(QDate(2026, 7, 1));
    QCOMPARE(changed.count(), 2);
    QTest::keyClick(edit.CheckBox(), Qt::Key_Space);
    QVERIFY(!edit.Date().isValid());
    QTest::keyClick(edit.CheckBox(), Qt::Key_Space);
    QCOMPARE(edit.Date(), QDate(2026, 7, 1)); // off and on again gives the date back
    edit.SetDate(QDate());
    QVERIFY(!edit.CheckBox()->isChecked());
    edit.SetDate(QDate(1899, 12, 30)); // how the tables say that there is none
    QVERIFY(!edit.Date().isValid());

    edit.SetOptional(false);
    QVERIFY(!edit.CheckBox()->isVisible());
    edit.SetDate(QDate());
    QCOMPARE(edit.Date(), QDate::currentDate());
    edit.setProperty("date", QDate(2027, 1, 31));
    QCOMPARE(edit.DateBox()->date(), QDate(2027, 1, 31));
}

void t_editors::dateTyping()
{
    TBench<TqsDateEdit> bench;
    bench.window.setLocale(QLocale(QLocale::English, QLocale::Australia));
    TqsDateEdit &edit = bench.control;
    edit.SetOptional(false);
    edit.SetDate(QDate(2026, 6, 30));
    bench.Show();
    QDateEdit &box = *edit.DateBox();
    QCOMPARE(box.text(), "30/6/2026");
    const auto typed = [&](const QString &text) {
        edit.SetDate(QDate(2026, 6, 30));
        bench.before.setFocus();
        bench.Enter();
        QTest::keyClicks(&box, text);
        bench.Leave();
        return edit.Date();
    };
    QCOMPARE(typed("31/12/2030"), QDate(2030, 12, 31));
    QCOMPARE(typed("01/07/26"), QDate(2026, 7, 1));
    QCOMPARE(typed("1.7.1999"), QDate(1999, 7, 1));
    QCOMPARE(typed("1/7"), QDate(2026, 7, 1));
    QCOMPARE(typed("010727"), QDate(2027, 7, 1));
    QCOMPARE(typed("1 aug 2027"), QDate(2027, 8, 1));
    QCOMPARE(typed("2027-02-03"), QDate(2027, 2, 3));
    QCOMPARE(typed("31/6/2026"), QDate(2026, 6, 30)); // no such day: the date before stays
    QCOMPARE(typed("nonsense"), QDate(2026, 6, 30));
    QCOMPARE(box.text(), "30/6/2026");

    box.setFocus();
    QTest::keyClick(&box, Qt::Key_Up);
    QCOMPARE(edit.Date(), QDate(2026, 7, 1));
    QTest::keyClick(&box, Qt::Key_Home);
    QTest::keyClick(&box, Qt::Key_Right);
    QTest::keyClick(&box, Qt::Key_Right);
    QTest::keyClick(&box, Qt::Key_Down);
    QCOMPARE(edit.Date(), QDate(2026, 6, 1));
    QTest::keyClick(&box, Qt::Key_End);
    QTest::keyClick(&box, Qt::Key_Down);
    QCOMPARE(edit.Date(), QDate(2025, 6, 1));
    QTest::keyClick(&box, Qt::Key_Tab);
    QVERIFY(bench.after.hasFocus());
}

void t_editors::checkList()
{
    TBench<TqsCheckList> bench;
    TqsCheckList &list = bench.control;
    list.SetItems({{3, "Three"}, {7, "Seven"}, {12, "Twelve"}});
    bench.Show();
    QSignalSpy changed(&list, &TqsCheckList::ValueChanged);
    QCOMPARE(list.AllBox()->checkState(), Qt::Unchecked);
    list.SetIdText(" 12,3,x,,3");
    QCOMPARE(list.IdText(), "3,12");
    QCOMPARE(list.AllBox()->checkState(), Qt::PartiallyChecked);
    QCOMPARE(changed.count(), 1);

    list.AllBox()->click(); // some -> all -> none -> all
    QCOMPARE(list.IdText(), "3,7,12");
    list.AllBox()->click();
    QCOMPARE(list.IdText(), "");
    QCOMPARE(list.AllBox()->checkState(), Qt::Unchecked);
    list.AllBox()->click();
    QCOMPARE(list.Checked(), (QList<int>{3, 7, 12}));
    list.AllBox()->setChecked(false);
    QCOMPARE(list.IdText(), "");
    QCOMPARE(changed.count(), 5);

    list.List()->setFocus();
    list.List()->setCurrentRow(1);
    QTest::keyClick(list.List(), Qt::Key_Space);
    QCOMPARE(list.IdText(), "7");
    list.List()->item(2)->setCheckState(Qt::Checked);
    QCOMPARE(list.IdText(), "7,12");
    list.SetItems({{12, "Twelve"}, {20, "Twenty"}}); // 7 has gone, and its tick with it
    QCOMPARE(list.IdText(), "12");
    list.SetItems({{7, "Seven"}, {12, "Twelve"}, {20, "Twenty"}});
    QCOMPARE(list.IdText(), "12");
    QCOMPARE(changed.count(), 8);

    list.SetIdText("12,99"); // 99: a record that the list does not offer
    QCOMPARE(list.IdText(), "12,99");
    QCOMPARE(list.List()->item(3)->text(), "#99");
    list.SetItems({{12, "Twelve"}});
    QCOMPARE(list.IdText(), "12,99");
    list.SetItems({{99, "Ninety-nine"}, {12, "Twelve"}});
    QCOMPARE(list.IdText(), "99,12");
    QCOMPARE(list.AllBox()->checkState(), Qt::Checked);
}

void t_editors::radioGroup()
{
    TBench<TqsRadioGroup> bench(QStringList{"rbtAccrual", "rbtGrant", "rbtNone"},
                                QStringList{"&Accrual", "&Grant", "&None"}, Qt::Horizontal);
    TqsRadioGroup &group = bench.control;
    bench.Show();
    QSignalSpy changed(&group, &TqsRadioGroup::ValueChanged);
    QCOMPARE(group.Value(), -1);
    group.SetValue(1);
    group.SetValue(1);
    QCOMPARE(changed.count(), 1);
    group.setFocus();
    QVERIFY(group.Button(1)->hasFocus());
    QTest::keyClick(group.Button(1), Qt::Key_Right);
    QCOMPARE(group.Value(), 2);
    FindControl<QRadioButton>(&group, "rbtAccrual").click();
    QCOMPARE(group.Value(), 0);
    group.SetValue(-1);
    QCOMPARE(group.Value(), -1);
    QVERIFY(!group.Button(0)->isChecked());
    QCOMPARE(changed.count(), 4);
}

void t_editors::lookupHoldsAllOfAShortList()
{
    TTemplateDatabase database;
    FillBanks(500);
    TqsLookupCombo combo;
    combo.SetSource(Banks());
    QSignalSpy changed(&combo, &TqsLookupCombo::ValueChanged);
    QCOMPARE(combo.Key(), 0);
    combo.Reload();
    QCOMPARE(combo.count(), 500);
    QCOMPARE(combo.currentText(), "");
    QCOMPARE(combo.itemText(499), "B00500");
    QCOMPARE(changed.count(), 0);
    combo.setCurrentIndex(combo.findText("B00042"));
    QCOMPARE(combo.Key(), BankId("B00042"));
    QCOMPARE(combo.currentData().toInt(), combo.Key());
    QCOMPARE(combo.Field(u"cBankName").toString(), "Name 458");
    QVERIFY(combo.Field(u"iStateID").isNull()); // not a column of the list, but of the record
    combo.SetKey(BankId("B00007"));
    QCOMPARE(combo.currentText(), "B00007");
    QCOMPARE(changed.count(), 2);
    MainConnection().Execute("update _iptblBanks set cCode = 'A' where cCode = 'B00007'");
    combo.Reload();
    QCOMPARE(combo.currentText(), "A");
    QCOMPARE(combo.currentIndex(), 0);
    QCOMPARE(changed.count(), 2);
    combo.setProperty("key", 0);
    QCOMPARE(combo.currentIndex(), -1);
    QVERIFY(!combo.Field(u"cBankName").isValid());
    QCOMPARE(changed.count(), 3);
}

void t_editors::lookupKeepsAnUnknownId()
{
    TTemplateDatabase database;
    for (const int banks : {3, 600}) {
        MainConnection().Execute("delete _iptblBanks");
        FillBanks(banks);
        TBench<TqsLookupCombo> bench;
        TqsLookupCombo &combo = bench.control;
        combo.SetSource(Banks());
        combo.SetKey(99999);
        bench.Show();
        QCOMPARE(combo.currentText(), "#99999");
        QCOMPARE(combo.Key(), 99999);
        QVERIFY(!combo.Field(u"cCode").isValid());
        combo.Reload();
        QCOMPARE(combo.Key(), 99999);
        QTest::keyClicks(&combo, "b00002");
        QCOMPARE(combo.currentText(), "B00002");
        combo.SetKey(99999);
        QCOMPARE(combo.currentText(), "#99999");
        QTest::keyClick(&combo, Qt::Key_Delete);
        QCOMPARE(combo.Key(), 0);
    }
}

void t_editors::lookupByKeyboard()
{
    TTemplateDatabase database;
    const QList<QStringList> banks{{"ANZ", "013-001", "Australia and New Zealand"},
                                   {"BOQ", "124-001", "Bank of Queensland"},
                                   {"BQL", "645-646", "Westpac look-alike 100%"},
                                   {"WBC", "032-001", "Westpac"}};
    for (const QStringList &bank : banks) {
        MainConnection().Execute("insert _iptblBanks (cCode, cBSBNumber, cBankName) values (:a, :b, :c)",
                                 {{"a", bank[0]}, {"b", bank[1]}, {"c", bank[2]}});
    }
    TBench<TqsLookupCombo> bench;
    TqsLookupCombo &combo = bench.control;
    combo.SetSource(Banks());
    bench.Show();
    bench.Enter();
    const auto typed = [&](const char *text) {
        combo.SetKey(0);
        QTest::keyClicks(&combo, text);
        return combo.currentText();
    };
    QCOMPARE(typed("w"), "WBC"); // the code comes before the name
    QCOMPARE(typed("westpac l"), "BQL");
    QCOMPARE(typed("645"), "BQL");
    QCOMPARE(typed("b"), "BOQ");
    QCOMPARE(typed("bb"), "BQL");
    QCOMPARE(typed("bbb"), "BOQ");
    QCOMPARE(typed("bx"), "BOQ"); // what fits nothing changes nothing
    QCOMPARE(typed("%"), "");
    for (const char letter : {'B', 'Q'}) { // a capital takes the Shift key, which types nothing itself
        QTest::keyPress(&combo, Qt::Key_Shift);
        QTest::keyClick(&combo, letter, Qt::ShiftModifier);
        QTest::keyRelease(&combo, Qt::Key_Shift);
    }
    QCOMPARE(combo.currentText(), "BQL");
    combo.SetKey(0);
    QTest::keyClick(&combo, Qt::Key_Down);
    QCOMPARE(combo.currentText(), "ANZ");
    QTest::keyClick(&combo, Qt::Key_Down);
    QCOMPARE(combo.currentText(), "BOQ");
    QTest::keyClick(&combo, Qt::Key_Backspace);
    QCOMPARE(combo.Key(), 0);
    combo.SetMayBeEmpty(false);
    QTest::keyClick(&combo, Qt::Key_End);
    QTest::keyClick(&combo, Qt::Key_Delete);
    QCOMPARE(combo.currentText(), "WBC");
}

void t_editors::lookupOfManyRows()
{
    TTemplateDatabase database;
    FillBanks(2500);
    TBench<TqsLookupCombo> bench;
    TqsLookupCombo &combo = bench.control;
    TLookupSource source = Banks();
    source.where = "cBSBNumber > :low";
    source.params = {{"low", "100010"}};
    combo.SetSource(source);
    bench.Show();
    QVERIFY2(combo.count() <= 500, "a long list is not read whole");
    QCOMPARE(combo.itemText(0), "B00011");
    const int id = BankId("B01700");
    combo.SetKey(id);
    QCOMPARE(combo.currentText(), "B01700");
    QTest::keyClick(&combo, Qt::Key_Up);
    QCOMPARE(combo.currentText(), "B01699");
    QTest::keyClick(&combo, Qt::Key_Down);
    QTest::keyClick(&combo, Qt::Key_Down);
    QCOMPARE(combo.currentText(), "B01701");
    QTest::keyClick(&combo, Qt::Key_End);
    QCOMPARE(combo.currentText(), "B02500");
    QTest::keyClick(&combo, Qt::Key_Home);
    QCOMPARE(combo.currentText(), "B00011");
    QTest::keyClicks(&combo, "b022");
    QCOMPARE(combo.currentText(), "B02200");
    combo.SetKey(id);
    for (const char *wildcard : {"%5", "_", "["})
        QTest::keyClicks(&combo, wildcard);
    QCOMPARE(combo.Key(), id);
    QTest::keyClicks(&combo, "102345");
    QCOMPARE(combo.currentText(), "B02345");
    QCOMPARE(combo.Field(u"cBankName").toString(), "Name 155");
    combo.Reload();
    QCOMPARE(combo.currentText(), "B02345");
    combo.SetKey(BankId("B00005")); // exists, but is no choice
    QCOMPARE(combo.currentText(), QStringLiteral("#%1").arg(combo.Key()));

    // Every record comes by once, in order.
    source.orderBy = "cBankName desc";
    combo.SetSource(source);
    combo.SetKey(0);
    QStringList names;
    for (int i = 0; i < 2490; ++i) {
        QTest::keyClick(&combo, i == 0 ? Qt::Key_Home : Qt::Key_Down);
        names += combo.Field(u"cBankName").toString();
    }
    QStringList sorted = names;
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    QCOMPARE(names, sorted);
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 2490);
}

void t_editors::lookupPopup()
{
    TTemplateDatabase database;
    FillBanks(1500);
    TBench<TqsLookupCombo> bench;
    TqsLookupCombo &combo = bench.control;
    combo.SetSource(Banks());
    combo.SetKey(BankId("B00700"));
    bench.Show();
    combo.setFocus();
    QSignalSpy changed(&combo, &TqsLookupCombo::ValueChanged);
    QTest::keyClick(&combo, Qt::Key_F4);
    QAbstractItemView &view = *combo.view();
    QVERIFY(view.isVisible());
    QCOMPARE(view.model()->headerData(2, Qt::Horizontal).toString(), "Bank");
    QCOMPARE(view.currentIndex().siblingAtColumn(0).data().toString(), "B00700");
    QTest::keyClick(&view, Qt::Key_B, Qt::ShiftModifier);
    QTest::keyPress(&view, Qt::Key_Shift);
    QTest::keyClicks(&view, "01234");
    QCOMPARE(view.currentIndex().data().toString(), "B01234");
    QCOMPARE(combo.Key(), BankId("B00700"));
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(&view, Qt::Key_Home);
    QCOMPARE(view.currentIndex().data().toString(), "B00001");
    QTest::keyClicks(&view, "b00690"); // what lies around it holds the chosen one, too
    QCOMPARE(view.currentIndex().data().toString(), "B00690");
    QCOMPARE(view.model()->match(view.model()->index(0, 0), Qt::DisplayRole, "B00700", -1, Qt::MatchExactly).size(), 1);
    QCOMPARE(combo.Key(), BankId("B00700"));
    QTest::keyClick(&view, Qt::Key_Escape);
    QVERIFY(!view.isVisible());
    QCOMPARE(combo.currentText(), "B00700");

    QTest::keyClick(&combo, Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(&view, Qt::Key_End);
    QTest::keyClick(&view, Qt::Key_Up);
    QTest::keyClick(&view, Qt::Key_Return);
    QCOMPARE(combo.currentText(), "B01499");
    QCOMPARE(combo.Key(), BankId("B01499"));
    QCOMPARE(changed.count(), 1);
}

void t_editors::lookupSourceChanges()
{
    TTemplateDatabase database;
    FillBanks(20);
    TqsLookupCombo combo;
    combo.SetSource(Banks());
    const int id = BankId("B00012");
    combo.SetKey(id);
    QSignalSpy changed(&combo, &TqsLookupCombo::ValueChanged);
    TLookupSource others = Banks();
    others.where = "idBank <> :this";
    others.params = {{"this", BankId("B00003")}};
    combo.SetSource(others);
    QCOMPARE(combo.count(), 19);
    QCOMPARE(combo.findText("B00003"), -1);
    QCOMPARE(combo.Key(), id);
    QCOMPARE(combo.currentText(), "B00012");
    QCOMPARE(changed.count(), 0);
    others.from = "_noSuchTable";
    QVERIFY_THROWS_EXCEPTION(TDbError, combo.SetSource(others));
    QCOMPARE(combo.Key(), id);
}

QTEST_MAIN(t_editors)
#include "t_editors.moc"
