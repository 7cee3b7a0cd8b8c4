// SPDX-License-Identifier: Apache-2.0
#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include "framework/editors/Editors.h"
#include "framework/grid/MemoryGrid.h"
#include "framework/widgets/Plot.h"
#include "tests/support/TestSupport.h"

namespace {

const QList<TGridColumn> kColumns{
    {"id", "ID", TGridColumn::Kind::Integer, 60, false},
    {"fValue", "Value", TGridColumn::Kind::Float, 100, true, true, 2},
    {"cText", "Text", TGridColumn::Kind::Text},
};

QList<int> Ids(const TMemoryTable &table)
{
    QList<int> ids;
    for (int row = 0; row < table.Count(); ++row)
        ids += table.Value(row, u"id").toInt();
    return ids;
}

} // namespace

class t_widgets final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { FailOnWarnings(); }
    void memoryTableKeepsItsOrder();
    void memoryGridInPlace();
    void niceSteps_data();
    void niceSteps();
    void plotDrawsItsLine_data();
    void plotDrawsItsLine();
    void plotKeys();
};

void t_widgets::memoryTableKeepsItsOrder()
{
    TMemoryTable table(kColumns, "fValue");
    QAbstractItemModelTester tester(&table);
    table.SetRows({{{"id", 1}, {"fValue", 5.0}}, {{"id", 2}, {"fValue", 3.0}}, {{"id", 3}, {"fValue", 5.0}}});
    QCOMPARE(Ids(table), (QList<int>{2, 1, 3}));
    QCOMPARE(table.Append({{"id", 4}, {"fValue", 5.0}}), 3); // behind its equals
    QCOMPARE(table.Append({{"id", 5}}), 0);                  // blank: 0
    QCOMPARE(table.Set(0, {{"fValue", 4.0}}), 1);
    QCOMPARE(Ids(table), (QList<int>{2, 5, 1, 3, 4}));
    QCOMPARE(table.Set(4, {{"fValue", 1.0}, {"cText", "x"}}), 0);
    QCOMPARE(Ids(table), (QList<int>{4, 2, 5, 1, 3}));
    QCOMPARE(table.Value(0, u"CTEXT").toString(), "x");
    table.Remove(1);
    QCOMPARE(Ids(table), (QList<int>{4, 5, 1, 3}));
    QCOMPARE(table.Find(u"fValue", 5.0), 2);
    QCOMPARE(table.Find(u"fValue", 3.0), -1);
}

void t_widgets::memoryGridInPlace()
{
    QDialog window;
    window.setObjectName("frmTest");
    auto *grid = new TqsMemoryGrid(kColumns, QString(), &window);
    grid->SetInPlace(true);
    grid->Table().SetBounds(u"fValue", 0.0, 100.0);
    ShowActive(window);
    grid->setFocus();
    PressKey(*grid, Qt::Key_Return); // nothing there, and not the window's OK
    QVERIFY(window.isVisible());
    PressKey(*grid, Qt::Key_Insert);
    auto *edit = grid->findChild<TqsNumberEdit *>();
    QVERIFY(edit);
    Type(*edit, "-12.345");
    PressKey(*edit, Qt::Key_Return);
    QCoreApplication::processEvents(); // the delegate takes the value once the key is done
    QVERIFY(window.isVisible());
    QCOMPARE(grid->model()->index(0, 1).data().toString(), "12.35"); // no sign below a bound of 0
    grid->model()->setData(grid->model()->index(0, 1), 101.0);
    QCOMPARE(grid->Table().Number(0, u"fValue"), 12.35);
    PressKey(*grid, Qt::Key_Delete);
    QCOMPARE(grid->Table().Count(), 0);
    PressKey(*grid, Qt::Key_Delete);
}

void t_widgets::niceSteps_data()
{
    QTest::addColumn<double>("range");
    QTest::addColumn<double>("step");
    QTest::newRow("ones") << 5.0 << 1.0;
    QTest::newRow("two") << 7.0 << 2.0;
    QTest::newRow("two and a half") << 12.0 << 2.5;
    QTest::newRow("next power") << 4100.0 << 1000.0;
    QTest::newRow("small") << 0.02 << 0.005;
    QTest::newRow("nothing") << 0.0 << 1.0;
}

void t_widgets::niceSteps()
{
    QFETCH(double, range);
    QTEST(NiceStep(range, 5), "step");
}

void t_widgets::plotDrawsItsLine_data()
{
    QTest::addColumn<QColor>("base");
    QTest::newRow("light") << QColor(Qt::white);
    QTest::newRow("dark") << QColor(30, 30, 34);
}

// The line goes from the lower left to the upper right corner and can be told from the ground.
void t_widgets::plotDrawsItsLine()
{
    QFETCH(QColor, base);
    TqsPlot plot;
    QPalette palette;
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, base.lightnessF() > 0.5f ? Qt::black : Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x2f6da8));
    plot.setPalette(palette);
    plot.resize(400, 300);
    plot.SetRange(0, 100);
    plot.SetSeries({{"line", {{0, 0}, {100, 1000}}}});
    const QImage image = plot.grab().toImage();
    const auto blue = [&](int x, int y) {
        const QColor c = image.pixelColor(x, y);
        return c.blue() - c.red() > 60;
    };
    const auto lineAt = [&](int x) { // height of the line in a column of pixels, -1 without
        for (int y = 0; y < image.height(); ++y) {
            if (blue(x, y))
                return image.height() - y;
        }
        return -1;
    };
    QVERIFY(lineAt(100) > 0);
    QVERIFY(lineAt(200) > lineAt(100) + 30);
    QVERIFY(lineAt(300) > lineAt(200) + 30);
    QCOMPARE(lineAt(10), -1);
}

void t_widgets::plotKeys()
{
    TqsPlot plot;
    plot.SetRange(0, 1000);
    plot.SetReadOut([](double x) { return TqsPlot::TReading{QString("at %1").arg(x), x}; });
    plot.SetMarker(500);
    QSignalSpy moved(&plot, &TqsPlot::MarkerMoved);
    ShowActive(plot);
    PressKey(plot, Qt::Key_Right);
    QCOMPARE(*plot.Marker(), 510.0);
    QCOMPARE(plot.accessibleDescription(), "at 510");
    PressKey(plot, Qt::Key_PageDown);
    QCOMPARE(*plot.Marker(), 410.0);
    PressKey(plot, Qt::Key_Home);
    PressKey(plot, Qt::Key_Left);
    QCOMPARE(*plot.Marker(), 0.0);
    PressKey(plot, Qt::Key_End);
    QCOMPARE(*plot.Marker(), 1000.0);
    QCOMPARE(moved.count(), 5);
}

QTEST_MAIN(t_widgets)
#include "t_widgets.moc"
