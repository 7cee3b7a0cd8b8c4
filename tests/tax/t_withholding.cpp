// SPDX-License-Identifier: Apache-2.0
#include "tax/Withholding.h"
#include "tests/tax/TaxWorld.h"

namespace {

using Rule = TWithholdingRule;

QList<TTaxBracket> Stored(const QString &select, int scale)
{
    QList<TTaxBracket> brackets;
    const QList<QStringList> rows = RowsOf(select, {{"id", scale}});
    for (const QStringList &row : rows)
        brackets.append({row[0].toDouble(), row[1].toDouble(), row.value(2).toDouble()});
    return brackets;
}

QList<TTaxBracket> TaxBrackets(int scale)
{
    return Stored("select TaxBracket, TaxPercentage, TaxAmount from _iptblTaxBrackets where iTaxScalesID = :id "
                  "order by TaxBracket",
                  scale);
}

} // namespace

class t_withholding final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void publishedAmounts_data();
    void publishedAmounts();
    void rounding_data();
    void rounding();
    void publishedScalesGiveNoWarning();
    void warnings_data();
    void warnings();
};

void t_withholding::publishedAmounts_data()
{
    QTest::addColumn<int>("scale"); // supplied key
    QTest::addColumn<double>("earnings");
    QTest::addColumn<double>("amount");
    QTest::addColumn<int>("bracket");
    QTest::newRow("2027 scale 2, published result") << 2702 << 1100.0 << 170.0 << 5;
    QTest::newRow("cents of the earnings do not count") << 2702 << 1100.99 << 170.0 << 5;
    QTest::newRow("nothing below the first threshold") << 2702 << 361.0 << 0.0 << 0;
    QTest::newRow("the threshold itself is in the next bracket") << 2702 << 362.0 << 0.0 << 1;
    QTest::newRow("the top bracket has no end") << 2702 << 20000.0 << 8745.0 << 8;
    QTest::newRow("a negative b is added") << 2101 << 400.0 << 90.0 << 2;
    QTest::newRow("no tax file number: cents of the result do not count") << 2704 << 101.99 << 47.0 << 0;
    QTest::newRow("foreign, no tax file number") << 2705 << 1001.0 << 450.0 << 0;
    QTest::newRow("no earnings") << 2701 << 0.0 << 0.0 << 0;
}

void t_withholding::publishedAmounts()
{
    QFETCH(int, scale);
    QFETCH(double, earnings);
    TTaxWorld world;
    const TWithholding result = Withhold(TaxBrackets(scale), Rule::Weekly, earnings);
    QTEST(result.amount, "amount");
    QTEST(result.bracket, "bracket");
}

void t_withholding::rounding_data()
{
    QTest::addColumn<QList<TTaxBracket>>("brackets");
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<double>("earnings");
    QTest::addColumn<double>("amount");
    QTest::newRow("50 cents go up") << QList<TTaxBracket>{{10, 0, 0}, {9999999, 0.5, 0.495}} << Rule::Weekly << 101.0
                                    << 51.0; // 50.5
    QTest::newRow("less goes down") << QList<TTaxBracket>{{10, 0, 0}, {9999999, 0.5, 0.4951}} << Rule::Weekly << 101.0
                                    << 50.0; // 50.4999
    QTest::newRow("exact halves in binary-unfriendly numbers")
        << QList<TTaxBracket>{{10, 0, 0}, {9999999, 0.1, 0.599}} << Rule::Weekly << 120.0 << 12.0; // 11.5
    QTest::newRow("below zero") << QList<TTaxBracket>{{9999999, 0.0, 1.5}, {99999999, 0, 0}} << Rule::Weekly << 5.0
                                << -1.0;
    QTest::newRow("yearly: to the cent, cents count")
        << QList<TTaxBracket>{{9999999, 0.105, 0}} << Rule::Yearly << 100.1 << 10.51; // 10.5105
    QTest::newRow("a loan's single rate is not a flat scale")
        << QList<TTaxBracket>{{9999999, 0.01, 0}} << Rule::StudyLoan << 149.0 << 1.0; // 1.4999
    QTest::newRow("thresholds with cents") << QList<TTaxBracket>{{100.99, 0, 0}, {9999999, 0, -7}} << Rule::Weekly
                                           << 100.0 << 7.0; // 100.99 is not below 100.99
}

void t_withholding::rounding()
{
    QFETCH(QList<TTaxBracket>, brackets);
    QFETCH(Rule, rule);
    QFETCH(double, earnings);
    QTEST(Withhold(brackets, rule, earnings).amount, "amount");
    QCOMPARE(Withhold({{100, 1, 0}, {200, 1, 1}}, rule, 250).bracket, -1);
}

void t_withholding::publishedScalesGiveNoWarning()
{
    TTaxWorld world;
    const struct
    {
        const char *scales;
        const char *brackets;
        Rule rule;
        int expected;
    } kinds[] = {
        {"select idTaxScales from _iptblTaxScales",
         "select TaxBracket, TaxPercentage, TaxAmount from _iptblTaxBrackets where iTaxScalesID = :id order by "
         "TaxBracket",
         Rule::Weekly, 49},
        {"select idHECSScales from _iptblHECSScales",
         "select fWeeklyEarnings, CoefficientA, CoefficientB from _iptblHECSBrackets where iHECSScalesID = :id "
         "order by fWeeklyEarnings",
         Rule::StudyLoan, 10},
        {"select idSFSSScales from _iptblSFSSScales",
         "select fWeeklyEarnings, CoefficientA from _iptblSFSSBrackets where iSFSSScalesID = :id order by "
         "fWeeklyEarnings",
         Rule::StudyLoan, 4},
    };
    for (const auto &kind : kinds) {
        const QList<QStringList> scales = RowsOf(kind.scales);
        QCOMPARE(scales.size(), kind.expected);
        for (const QStringList &scale : scales) {
            const QList<TTaxBracket> brackets = Stored(kind.brackets, scale[0].toInt());
            QVERIFY2(!brackets.isEmpty(), qPrintable(scale[0]));
            QCOMPARE(WithholdingWarnings(brackets, kind.rule), QStringList());
            // Nobody is ever paid less for earning more than the tables' rounding explains.
            double before = 0;
            for (int earnings = 0; earnings < 6000; ++earnings) {
                const double amount = Withhold(brackets, kind.rule, earnings).amount;
                QVERIFY2(amount >= before, qPrintable(QString("%1 at %2").arg(scale[0]).arg(earnings)));
                before = amount;
            }
        }
    }
}

void t_withholding::warnings_data()
{
    QTest::addColumn<QList<TTaxBracket>>("brackets");
    QTest::addColumn<Rule>("rule");
    QTest::addColumn<QStringList>("expected");
    const QString jump = "The result jumps by %1 at %2 (bracket %3).";
    QTest::newRow("a digit too many in b")
        << QList<TTaxBracket>{{362, 0, 0}, {538, 0.15, 543.462}, {9999999, 0.25, 597.0}} << Rule::Weekly
        << QStringList{"The result jumps by -489.16 at 362.00 (bracket 2).",
                       "The result is negative in bracket 2 (-489.00 at 362.00).",
                       "The result is negative in bracket 3 (-462.00 at 538.00)."};
    QTest::newRow("50 cents are no jump")
        << QList<TTaxBracket>{{100, 0.1, 0}, {9999999, 0.1, -0.5}} << Rule::Weekly << QStringList();
    QTest::newRow("a cent more is one") << QList<TTaxBracket>{{100, 0.1, 0}, {9999999, 0.1, -0.51}} << Rule::Weekly
                                        << QStringList{jump.arg("0.51", "100.00", "2")};
    QTest::newRow("tax rates on the whole are a slip")
        << QList<TTaxBracket>{{1000, 0, 0}, {9999999, 0.01, 0}} << Rule::Weekly
        << QStringList{jump.arg("10.00", "1,000.00", "2")};
    QTest::newRow("loan rates on the whole are meant")
        << QList<TTaxBracket>{{1000, 0, 0}, {9999999, 0.01, 0}} << Rule::StudyLoan << QStringList();
    QTest::newRow("a loan rate that falls is not")
        << QList<TTaxBracket>{{1000, 0.1, 0}, {9999999, 0.02, 0}} << Rule::StudyLoan
        << QStringList{jump.arg("-80.00", "1,000.00", "2")};
    QTest::newRow("thresholds twice") << QList<TTaxBracket>{{100, 0.1, 0}, {100, 0.1, 0}, {9999999, 0.1, 0}}
                                      << Rule::Weekly
                                      << QStringList{"The thresholds do not rise at bracket 2 (100.00)."};
    QTest::newRow("a few cents below zero")
        << QList<TTaxBracket>{{9999999, 0.15, 0.15}, {99999999, 0.15, 0.15}} << Rule::Weekly << QStringList();
}

void t_withholding::warnings()
{
    QFETCH(QList<TTaxBracket>, brackets);
    QFETCH(Rule, rule);
    QStringList warnings = WithholdingWarnings(brackets, rule);
    QFETCH(QStringList, expected);
    std::sort(warnings.begin(), warnings.end());
    std::sort(expected.begin(), expected.end());
    QCOMPARE(warnings, expected);
}

QTEST_MAIN(t_withholding)
#include "t_withholding.moc"
