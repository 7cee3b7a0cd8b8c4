// SPDX-License-Identifier: Apache-2.0
#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "banking/BSBDirectoryImport.h"
#include "tests/database/Schema.h"

using namespace Qt::StringLiterals;

namespace {

const QByteArray kHeading =
    "bank_code,bank_name,branch_name,bsb,address,suburb,state,postcode,payment_flags,status\r\n";

QByteArray Row(const QByteArray &code, const QByteArray &bank, const QByteArray &branch, const QByteArray &bsb,
               const QByteArray &state = "NSW", const QByteArray &status = "open")
{
    return code + ',' + bank + ',' + branch + ',' + bsb + ",1 High St,Sydney," + state + ",2000,PEH," + status + "\r\n";
}

} // namespace

class TBankingImportTest final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init() { Clear(); }

    void AddsChangesAndLeaves();
    void RefusedRows_data();
    void RefusedRows();
    void Quoting();
    void WithoutHeading();
    void OtherFormats_data();
    void OtherFormats();
    void LongNames_data();
    void LongNames();
    void BankCodes_data();
    void BankCodes();
    void UnfitFiles_data();
    void UnfitFiles();
    void CancelWritesNothing_data();
    void CancelWritesNothing();
    void FailureWritesNothing();
    void WholeDirectory();

private:
    void Clear() { db_->Execute(u"delete from _iptblBanks"_s); }
    TBSBImportResult Import(QByteArray csv, const TBSBProgress &progress = {})
    {
        QBuffer buffer(&csv);
        buffer.open(QIODevice::ReadOnly);
        return ImportBSBDirectory(*db_, buffer, progress);
    }
    QStringList Bank(const QString &bsb)
    {
        const TDbRows rows = db_->Select(u"select cCode, cBankName, cBranchName, cStateCode from _ipvBanks "
                                         "where cBSBNumber = :bsb order by idBank"_s,
                                         {{u"bsb"_s, bsb}});
        QStringList values;
        for (const QVariant &value : rows.rows.value(0))
            values.append(value.toString());
        return values;
    }

    QTemporaryDir folder_;
    std::unique_ptr<TDbConnection> db_;
};

void TBankingImportTest::initTestCase()
{
    try {
        db_ = CreateEmbeddedDatabase(folder_.filePath(u"import.db"_s));
        RunSchema(*db_, false);
    } catch (const std::exception &error) {
        QFAIL(error.what());
    }
}

void TBankingImportTest::AddsChangesAndLeaves()
{
    const QByteArray csv = kHeading + Row("ANZ", "ANZ Bank", "Town", "012-001") +
                           Row("ANZ", "ANZ Bank", "Beach", "012-002") + Row("ANZ", "ANZ Bank", "Hill", "012-003") +
                           Row("ANZ", "ANZ Bank", "Merged", "012-004", "NSW", "merged") +
                           Row("ANZ", "ANZ Bank", "Closed", "012-005", "NSW", "Closed");
    TBSBImportResult result = Import(csv);
    QCOMPARE(result.added, 3);
    QCOMPARE(result.closed, 2);
    QCOMPARE(Bank(u"012-001"_s), (QStringList{u"ANZ012001"_s, u"ANZ Bank"_s, u"Town"_s, u"NSW"_s}));

    // the user's own code stays, and so does a bank that the file does not name
    db_->Execute(u"update _iptblBanks set cCode = 'MINE', cBranchName = 'Old' where cBSBNumber = '012-002'"_s);
    db_->Execute(u"update _iptblBanks set iStateID = 0 where cBSBNumber = '012-003'"_s);
    db_->Execute(u"insert into _iptblBanks (cCode, cBSBNumber) values ('KEEP', '099-999')"_s);
    db_->Execute(
        u"insert into _iptblBanks (cCode, cBranchName, cBSBNumber) values ('OPEN', 'Still here', '012-004')"_s);
    db_->Execute(
        u"insert into _iptblBanks (cCode, cBSBNumber) values ('TWIN', '012-001')"_s); // the first made one counts
    result = Import(csv);
    QCOMPARE(result.added, 0);
    QCOMPARE(result.changed, 2);
    QCOMPARE(result.unchanged, 1);
    QCOMPARE(result.closed, 1);
    QCOMPARE(result.closedKept, 1);
    QCOMPARE(result.Rows(), 5);
    QCOMPARE(Bank(u"012-002"_s), (QStringList{u"MINE"_s, u"ANZ Bank"_s, u"Beach"_s, u"NSW"_s}));
    QCOMPARE(Bank(u"012-003"_s).value(3), u"NSW"_s);
    QCOMPARE(Bank(u"012-004"_s).value(2), u"Still here"_s);
    QCOMPARE(Count(*db_, u"_iptblBanks"_s), 6);
    QCOMPARE(Import(csv).unchanged, 3);
}

void TBankingImportTest::RefusedRows_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("reason");
    const QString form = u"The BSB is not of the form 000-000."_s;
    QTest::newRow("short BSB") << Row("ANZ", "Bank", "Town", "012-01") << form;
    QTest::newRow("long BSB") << Row("ANZ", "Bank", "Town", "012-0011") << form;
    QTest::newRow("blank BSB") << Row("ANZ", "Bank", "Town", "") << form;
    QTest::newRow("letters") << Row("ANZ", "Bank", "Town", "O12-001") << form;
    QTest::newRow("Arabic digits") << Row("ANZ", "Bank", "Town", "٠١٢-٠٠١") << form;
    QTest::newRow("statement") << Row("ANZ", "Bank", "Town", "1'; drop table _iptblBanks; --") << form;
    QTest::newRow("blank bank") << Row("ANZ", "  ", "Town", "012-001") << u"The bank name is blank."_s;
    QTest::newRow("blank branch") << Row("ANZ", "Bank", "", "012-001") << u"The branch name is blank."_s;
    QTest::newRow("long bank") << Row("ANZ", QByteArray(51, 'x'), "Town", "012-001")
                               << u"The bank name is longer than 50 characters."_s;
    QTest::newRow("long branch") << Row("ANZ", "Bank", QByteArray(10000, 'x'), "012-001")
                                 << u"The branch name is longer than 50 characters."_s;
    QTest::newRow("state") << Row("ANZ", "Bank", "Town", "012-001", "ZZ") << u"The state \"ZZ\" is not known."_s;
    QTest::newRow("no state") << Row("ANZ", "Bank", "Town", "012-001", "") << u"The state \"\" is not known."_s;
    QTest::newRow("control") << Row("ANZ", QByteArray("Ba\0nk", 5), "Town", "012-001")
                             << u"A name holds a control character."_s;
    QTest::newRow("short row") << QByteArray("ANZ,Bank,Town,012-001\r\n") << u"The row has 4 fields; 10 are needed."_s;
    QTest::newRow("twice") << Row("ANZ", "Bank", "Town", "012 777") << u"The BSB is already in line 2."_s;
    QTest::newRow("code taken") << Row("MI-NE", "Bank", "Town", "099-998")
                                << u"The code \"MINE099998\" belongs to another bank."_s;
}

// The rows around a refused one are taken all the same.
void TBankingImportTest::RefusedRows()
{
    QFETCH(QByteArray, row);
    QFETCH(QString, reason);
    db_->Execute(u"insert into _iptblBanks (cCode, cBSBNumber) values ('MINE099998', '099-999')"_s);
    const TBSBImportResult result =
        Import(kHeading + Row("ANZ", "Bank", "First", "012-777") + row + Row("ANZ", "Bank", "Last", "012-778"));
    QCOMPARE(result.refused.size(), 1);
    QCOMPARE(result.refused[0].reason, reason);
    QCOMPARE(result.refused[0].line, 3);
    QCOMPARE(result.added, 2);
    QCOMPARE(Count(*db_, u"_iptblBanks"_s), 3);
}

void TBankingImportTest::Quoting()
{
    const QByteArray bom("\xEF\xBB\xBF");
    const TBSBImportResult result = Import(
        bom + kHeading + Row("ANZ", "\"Bank, of \"\"Quotes\"\" O'Hara; --\"", "\"Two\r\nlines\"", "\"012-001\"") +
        "\r\n" + Row("anz", "Te P\xC4\x81k\xC4\x81 \xF0\x9F\x8F\xA6", "  Town   Hall ", "012002", "nsw") +
        Row("ANZ", "Bank", "Town", "bad").chopped(2)); // and the last line has no end
    QCOMPARE(result.added, 2);
    QCOMPARE(Bank(u"012-001"_s),
             (QStringList{u"ANZ012001"_s, u"Bank, of \"Quotes\" O'Hara; --"_s, u"Two lines"_s, u"NSW"_s}));
    QCOMPARE(Bank(u"012-002"_s), (QStringList{u"ANZ012002"_s, u"Te Pākā 🏦"_s, u"Town Hall"_s, u"NSW"_s}));
    QCOMPARE(result.refused.value(0).line, 6); // the quoted line end and the empty line count
}

void TBankingImportTest::WithoutHeading()
{
    const TBSBImportResult result =
        Import("\"012-001\",\"ANZ\",\"Town\",\"1 High St\",\"Sydney\",\"NSW\",\"2000\",\"PEH\"\n"
               "333-001,ZZZ,New,1 High St,Perth,WA,6000,PEH\n"
               "012-003,ANZ,Merged,Refer to BSB 012-001,Sydney,NSW,2000,PEH\n");
    QCOMPARE(result.added, 2);
    QCOMPARE(result.closed, 1);
    QCOMPARE(Bank(u"012-001"_s),
             (QStringList{u"ANZ012001"_s, u"Australia & New Zealand Banking Group Limited"_s, u"Town"_s, u"NSW"_s}));
    QCOMPARE(Bank(u"333-001"_s).value(1), u"ZZZ"_s); // an institution that we do not know by name
}

void TBankingImportTest::OtherFormats_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<QByteArray>("bsb");
    QTest::addColumn<QString>("stored"); // empty: refused
    QTest::newRow("New Zealand") << 6 << QByteArray("01-0002") << u"01-0002"_s;
    QTest::newRow("New Zealand, digits") << 6 << QByteArray("010002") << u"01-0002"_s;
    QTest::newRow("New Zealand, short") << 6 << QByteArray("01-002") << QString();
    QTest::newRow("other") << 7 << QByteArray("12 3456 78") << u"12345678"_s;
    QTest::newRow("other, long") << 7 << QByteArray("12345678901") << QString();
}

void TBankingImportTest::OtherFormats()
{
    QFETCH(int, country);
    QFETCH(QByteArray, bsb);
    QFETCH(QString, stored);
    db_->Call(u"_ipspSetInstallationCountry"_s, {{u"Country"_s, country}});
    const TBSBImportResult result = Import(kHeading + Row("ANZ", "Bank", "Town", bsb));
    db_->Call(u"_ipspSetInstallationCountry"_s, {{u"Country"_s, 5}});
    QCOMPARE(result.added, stored.isEmpty() ? 0 : 1);
    QCOMPARE(Count(*db_, u"_iptblBanks where cBSBNumber = :b"_s, {{u"b"_s, stored}}), result.added);
}

void TBankingImportTest::LongNames_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("stored");
    QTest::newRow("division") << QByteArray("Bankwest (a division of Commonwealth Bank of Australia)") << u"Bankwest"_s;
    QTest::newRow("comma") << QByteArray("\"Bank of Heritage Isle, a division of Police Bank Ltd\"")
                           << u"Bank of Heritage Isle"_s;
    QTest::newRow("short enough") << QByteArray("Bankwest (a division)") << u"Bankwest (a division)"_s;
}

void TBankingImportTest::LongNames()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, stored);
    Import(kHeading + Row("ANZ", name, "Town", "012-001"));
    QCOMPARE(Bank(u"012-001"_s).value(1), stored);
}

void TBankingImportTest::BankCodes_data()
{
    QTest::addColumn<QString>("institution");
    QTest::addColumn<QString>("bsb");
    QTest::addColumn<QString>("code");
    QTest::newRow("plain") << u"ANZ"_s << u"012-004"_s << u"ANZ012004"_s;
    QTest::newRow("other characters") << u"a'n.z"_s << u"012-004"_s << u"ANZ012004"_s;
    QTest::newRow("long institution") << u"ABCDEFGH"_s << u"012-004"_s << u"ABCD012004"_s;
    QTest::newRow("long number") << u"ANZ"_s << u"1234567890"_s << u"1234567890"_s;
}

void TBankingImportTest::BankCodes()
{
    QFETCH(QString, institution);
    QFETCH(QString, bsb);
    QTEST(BSBBankCode(institution, bsb), "code");
}

void TBankingImportTest::UnfitFiles_data()
{
    QTest::addColumn<QByteArray>("csv");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray("\r\n\r\n") << u"The file is empty."_s;
    QTest::newRow("no directory")
        << QByteArray("name,age\nJoan,43\n")
        << u"The file is not a BSB directory: its first line names no \"bsb\" column and does not "
           "begin with a BSB number."_s;
    QTest::newRow("columns") << QByteArray("bsb,state\n012-001,NSW\n")
                             << u"The file has no column \"bank_code\", \"bank_name\", \"branch_name\"."_s;
    QTest::newRow("open quote") << kHeading + Row("ANZ", "Bank", "Town", "012-001") +
                                       Row("ANZ", "\"Bank", "Town", "012-002")
                                << u"The quotation mark opened in line 3 is never closed."_s;
    QTest::newRow("not UTF-8") << kHeading + Row("ANZ", "Caf\xE9", "Town", "012-001")
                               << u"The file is not UTF-8 text."_s;
}

void TBankingImportTest::UnfitFiles()
{
    QFETCH(QByteArray, csv);
    QFETCH(QString, message);
    QString told;
    try {
        Import(csv);
    } catch (const TBSBFileError &error) {
        told = QString::fromUtf8(error.what());
    }
    QCOMPARE(told, message);
    QCOMPARE(Count(*db_, u"_iptblBanks"_s), 0);
}

void TBankingImportTest::CancelWritesNothing_data()
{
    QTest::addColumn<int>("at");
    QTest::newRow("before the first row") << 0;
    QTest::newRow("in the middle") << 1;
    QTest::newRow("after the last row") << 3;
}

void TBankingImportTest::CancelWritesNothing()
{
    QFETCH(int, at);
    QByteArray csv = kHeading;
    for (int i = 0; i < 450; ++i)
        csv += Row("ANZ", "Bank", "Town", "012-" + QByteArray::number(i).rightJustified(3, '0'));
    QList<qint64> told;
    const TBSBImportResult result = Import(csv, [&](qint64 done, qint64 total) {
        told.append(done);
        return total == 450 && told.size() <= at;
    });
    QVERIFY(result.cancelled);
    QCOMPARE(told, (QList<qint64>{0, 200, 400, 450}.first(at + 1)));
    QVERIFY(!db_->InTransaction());
    QCOMPARE(Count(*db_, u"_iptblBanks"_s), 0);
}

// A failure of the database in the last chunk takes the first ones back too.
void TBankingImportTest::FailureWritesNothing()
{
    QByteArray csv = kHeading;
    for (int i = 0; i < 450; ++i)
        csv += Row("ANZ", "Bank", "Town", "012-" + QByteArray::number(i).rightJustified(3, '0'));
    const auto breakAt400 = [this](qint64 done, qint64) {
        if (done == 400)
            db_->Execute(u"insert into _iptblBanks (cCode) values (null)"_s);
        return true;
    };
    QVERIFY_THROWS_EXCEPTION(TDbError, Import(csv, breakAt400));
    QVERIFY(!db_->InTransaction());
    QCOMPARE(Count(*db_, u"_iptblBanks"_s), 0);
}

void TBankingImportTest::WholeDirectory()
{
    QFile file(QStringLiteral(QP_SOURCE_DIR "/../shared/data/banks.csv"));
    if (!file.open(QIODevice::ReadOnly))
        QSKIP("The whole directory is not beside the project.");
    QElapsedTimer timer;
    timer.start();
    const TBSBImportResult first = ImportBSBDirectory(*db_, file);
    qInfo("16193 rows in %lld ms", timer.elapsed());
    for (const TBSBRefusedRow &row : first.refused)
        qInfo("line %d, %s: %s", row.line, qPrintable(row.bsb), qPrintable(row.reason));
    QCOMPARE(first.added, 15753);
    QCOMPARE(first.closed, 440);
    QCOMPARE(first.Rows(), 16193);
    file.seek(0);
    const TBSBImportResult second = ImportBSBDirectory(*db_, file);
    QCOMPARE(second.unchanged, 15753);

    // The demonstration's banks are rows of the directory, made by the same rules.
    Clear();
    db_->RunScript(ReadScript(u"demo_banks.sql"_s), u"demo_banks.sql"_s);
    file.seek(0);
    const TBSBImportResult third = ImportBSBDirectory(*db_, file);
    QCOMPARE(third.changed, 0);
    QCOMPARE(third.unchanged, Count(*db_, u"_iptblBanks"_s) - third.added);
    QVERIFY(third.unchanged > 0);
    QCOMPARE(Count(*db_, u"(select cCode from _iptblBanks group by cCode having count(*) > 1) d"_s), 0);
}

QTEST_GUILESS_MAIN(TBankingImportTest)
#include "t_banking_import.moc"
