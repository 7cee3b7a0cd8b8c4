// SPDX-License-Identifier: Apache-2.0
#include <QLineEdit>

#include "framework/Kvglobal.h"
#include "tests/support/TestSupport.h"

// The driver of modal windows must see every fault that it is there to see, and must never hang.
class t_testsupport final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void scriptAnswersInOrder();
    void scriptReportsWhatWasNotPlanned_data();
    void scriptReportsWhatWasNotPlanned();
    void databasesAreSeparate();
};

void t_testsupport::scriptAnswersInOrder()
{
    TUserScript script;
    QString typed;
    script
        .Dialog("frmOuter",
                [&](QDialog &dialog) {
                    Type(FindControl<QLineEdit>(&dialog, "edtText"), QString::fromUtf8("a'b\u0142"));
                    typed = FindControl<QLineEdit>(&dialog, "edtText").text();
                    if (ConfMessage("Inner?"))
                        dialog.accept();
                })
        .Box("Inner?", QMessageBox::Yes)
        .Box("Which?", "Second");
    QDialog outer;
    outer.setObjectName("frmOuter");
    auto *edit = new QLineEdit(&outer);
    edit->setObjectName("edtText");
    QCOMPARE(outer.exec(), int(QDialog::Accepted));
    QCOMPARE(ChoiceMessage("Which?", "details", {"First", "Second"}, 0), 1);
    VERIFY_SCRIPT(script);
    QCOMPARE(typed, QString::fromUtf8("a'b\u0142"));
}

void t_testsupport::scriptReportsWhatWasNotPlanned_data()
{
    QTest::addColumn<QString>("planned");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QByteArray>("report");
    QTest::newRow("other text") << "One"
                                << "Two"
                                << QByteArray(
                                       "Unexpected box \"Two\"; expected was box \"One\"\nNever came: box \"One\"");
    QTest::newRow("none planned") << QString() << "Two"
                                  << QByteArray("Unexpected box \"Two\"; nothing more was expected");
    QTest::newRow("never came") << "One" << QString() << QByteArray("Never came: box \"One\"");
    QTest::newRow("no such button") << "Delete?"
                                    << "Delete?" << QByteArray("In box \"Delete?\": The box has no such button.");
}

void t_testsupport::scriptReportsWhatWasNotPlanned()
{
    QFETCH(QString, planned);
    QFETCH(QString, shown);
    TUserScript script;
    if (!planned.isEmpty())
        script.Box(planned, shown == planned ? QMessageBox::Save : QMessageBox::Ok);
    if (!shown.isEmpty())
        QCOMPARE(ConfMessage(shown), false);
    QVERIFY(!script.Verify());
    QTEST(script.Report(), "report");
}

void t_testsupport::databasesAreSeparate()
{
    {
        TTemplateDatabase database(TTemplateDatabase::Content::Empty, 6);
        QCOMPARE(int(CountryCode), 6);
        QCOMPARE(Installation().bsbFormat, "00-0000");
        MainConnection().Execute("insert _iptblBanks (cCode) values (:code)", {{"code", "X"}});
        QCOMPARE(RowsOf("select cCode, cBankName from _iptblBanks"), (QList<QStringList>{{"X", "NULL"}}));
    }
    QVERIFY(!HasMainConnection());
    TTemplateDatabase database;
    QCOMPARE(int(CountryCode), 5);
    QCOMPARE(ValueOf("select count(*) as n from _iptblBanks").toInt(), 0);
}

QTEST_MAIN(t_testsupport)
#include "t_testsupport.moc"
