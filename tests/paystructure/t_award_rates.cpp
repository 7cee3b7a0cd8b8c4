// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QLabel>

#include "framework/grid/qsGrid.h"
#include "tests/support/TestSupport.h"

// The list of rate types in a program that was started for award rates.
class t_award_rates final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void listShowsAwardRatesOnly();
};

void t_award_rates::listShowsAwardRatesOnly()
{
    TTemplateDatabase database(TTemplateDatabase::Content::Demo);
    TMemoryScreenHost host;
    QVERIFY(SendToPackage(9409));
    QWidget &list = *host.Screens.last();
    QCOMPARE(FindControl<QLabel>(&list, "lblHeader").text(), "Award Rates");
    QCOMPARE(FindControl<QLabel>(&list, "lblSubHeader").text(), "Award Rates List");
    auto &grid = FindControl<TqsGrid>(&list, "grdRateTypes");
    QCOMPARE(grid.model()->rowCount(), 1);
    QMap<QString, QString> shown;
    for (int column = 0; column < grid.model()->columnCount(); ++column) {
        if (!grid.isColumnHidden(column))
            shown.insert(grid.model()->headerData(column, Qt::Horizontal).toString(),
                         grid.model()->index(0, column).data().toString());
    }
    QCOMPARE(shown.value("Code"), "CLERK2");
    QCOMPARE(shown.value("Award Code"), "CLERKS");
    QCOMPARE(shown.value("Award Name"), "Clerks, private sector");
}

int main(int argc, char *argv[])
{
    QList<char *> words(argv, argv + argc);
    char award[] = "MAPS=Y";
    words.append(award);
    int count = int(words.size());
    QApplication application(count, words.data());
    t_award_rates test;
    return QTest::qExec(&test, argc, argv);
}
#include "t_award_rates.moc"
