// SPDX-License-Identifier: Apache-2.0
#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QHeaderView>
#include <QJsonDocument>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "framework/grid/qsGrid.h"

namespace {

using Kind = TGridColumn::Kind;

// Passes everything on to the real database, counts what is read, and fails on demand.
class TCountingConnection final : public TDbConnection
{
public:
    explicit TCountingConnection(std::unique_ptr<TDbConnection> real)
        : real_(std::move(real))
    {}
    TDbRows Select(const QString &sql, const TDbParams &params) override
    {
        if (failing)
            throw TDbError(TDbError::Kind::ConnectionLost, 0, QStringLiteral("The server is gone."), sql);
        statements += sql;
        for (const QVariant &value : params)
            longestText = std::max(longestText, value.toString().size());
        TDbRows result = real_->Select(sql, params);
        rows += result.size();
        return result;
    }
    int Execute(const QString &sql, const TDbParams &params) override { return real_->Execute(sql, params); }
    int Insert(const QString &sql, const TDbParams &params) override { return real_->Insert(sql, params); }
    TDbCallResult Call(const QString &procedure, const QList<TDbArgument> &arguments) override
    {
        return real_->Call(procedure, arguments);
    }
    void RunScript(const QString &script, const QString &title) override { real_->RunScript(script, title); }
    void Begin() override { real_->Begin(); }
    void Commit() override { real_->Commit(); }
    void Rollback() override { real_->Rollback(); }
    bool InTransaction() const override { return real_->InTransaction(); }
    QString Description() const override { return real_->Description(); }

    void Reset()
    {
        statements.clear();
        rows = 0;
    }
    QStringList statements;
    int rows = 0;
    qsizetype longestText = 0; // of the parameters
    bool failing = false;

private:
    std::unique_ptr<TDbConnection> real_;
};

TCountingConnection *db = nullptr;

QList<int> KeysOf(const QString &sql)
{
    QList<int> keys;
    for (const QVariantList &row : db->Select(sql, {}).rows)
        keys += row.first().toInt();
    return keys;
}

TListSource Source(const QString &table, const QString &where = {}, const TDbParams &params = {})
{
    return {table, {QStringLiteral("idNotes")}, QStringLiteral("idItem"), where, params};
}

QList<TGridColumn> ItemColumns()
{
    return {{"cCode", "Code"},
            {"cName", "Name"},
            {"iGroup", "Group", Kind::Integer},
            {"fAmount", "Amount", Kind::Float},
            {"bActive", "Active", Kind::Bool},
            {"dDay", "Day", Kind::Date},
            {"idNotes", "Notes", Kind::Notes},
            {"idItem", "Item ID", Kind::Integer, 60, false, false}};
}

} // namespace

class t_grid : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir_;

    // Reads what is read in idle moments.
    static void Settle()
    {
        qsizetype before = -1;
        while (before != db->statements.size()) {
            before = db->statements.size();
            for (int i = 0; i < 4; ++i)
                QCoreApplication::processEvents();
        }
    }
    static std::unique_ptr<TqsGrid> Opened(const QString &table, const QString &sort,
                                           TGridOrder order = TGridOrder::Ascending)
    {
        auto grid = std::make_unique<TqsGrid>();
        grid->SetColumns(ItemColumns(), sort, order);
        grid->resize(700, 400);
        grid->show();
        grid->OpenList(Source(table));
        Settle();
        return grid;
    }
    static QList<int> Keys(const TqsGrid &grid)
    {
        QList<int> keys;
        for (int row = 0; row < grid.model()->rowCount(); ++row)
            keys += grid.model()->index(row, 0).data(TqsGrid::KeyRole).toInt();
        return keys;
    }
    static int Distance(const TqsGrid &grid) { return grid.currentIndex().row() - grid.verticalScrollBar()->value(); }
    static bool IsFocusVisible(const TqsGrid &grid)
    {
        return grid.viewport()->rect().contains(grid.visualRect(grid.currentIndex()).center());
    }
    static void Scroll(TqsGrid &grid, int row)
    {
        grid.verticalScrollBar()->setValue(row);
        Settle();
    }
    static int TopKey(const TqsGrid &grid)
    {
        return grid.model()->index(grid.verticalScrollBar()->value(), 0).data(TqsGrid::KeyRole).toInt();
    }
    // `keys` is a stretch of `all`.
    static bool IsStretchOf(const QList<int> &keys, const QList<int> &all)
    {
        const qsizetype start = keys.isEmpty() ? 0 : all.indexOf(keys.first());
        return start >= 0 && all.mid(start, keys.size()) == keys;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(dir_.isValid());
        auto counting = std::make_unique<TCountingConnection>(CreateEmbeddedDatabase(dir_.filePath("grid.db")));
        db = counting.get();
        SetMainConnection(std::move(counting));
        QString script;
        for (const char *table : {"Items", "Many", "Few"}) {
            script +=
                QStringLiteral(
                    "create table dbo.%1 (idItem int identity(1,1) not null constraint PK_%1 primary key, cCode "
                    "nvarchar(20) null, "
                    "cName nvarchar(50) null, iGroup int null, fAmount float null, bActive bit not null default 0, "
                    "dDay datetime null, idNotes int null)\nGO\n"
                    "create index IX_%1_Code on dbo.%1 (cCode, idItem)\nGO\n"
                    "create index IX_%1_Group on dbo.%1 (iGroup, idItem)\nGO\n")
                    .arg(QLatin1String(table));
        }
        db->RunScript(script, "tables");
        TDbTransaction transaction(*db);
        // Ties and NULLs in every column but the key.
        for (int i = 0; i < 2600; ++i) {
            const auto orNull = [i](int every, const QVariant &value) { return i % every ? value : QVariant(); };
            db->Execute("insert dbo.Items (cCode, cName, iGroup, fAmount, bActive, dDay, idNotes) "
                        "values (:code, :name, :grp, :amount, :active, :day, :notes)",
                        {{"code", orNull(13, QStringLiteral("C%1").arg((i * 7919) % 1301, 4, 10, QLatin1Char('0')))},
                         {"name", QStringLiteral("Name %1").arg(i % 3)},
                         {"grp", orNull(2, i % 5)},
                         {"amount", orNull(3, ((i * 31) % 97) / 4.0 - 5)},
                         {"active", i % 2 == 0},
                         {"day", orNull(4, QDate(2026, 1, 1).addDays(i % 11).startOfDay())},
                         {"notes", i % 4 == 1 ? QVariant(i) : QVariant()}});
        }
        for (int i = 0; i < 1000; ++i)
            db->Execute("insert dbo.Many (cCode, cName, iGroup) values (:code, :name, :grp)",
                        {{"code", QStringLiteral("M%1").arg(i, 6, 10, QLatin1Char('0'))},
                         {"name", QStringLiteral("Name %1").arg(i % 50)},
                         {"grp", i % 10}});
        for (int block = 1; block < 100; ++block)
            db->Execute("insert dbo.Many (cCode, cName, iGroup) select 'N' + cCode + cast(:block as nvarchar(5)), "
                        "cName, iGroup from dbo.Many where idItem <= 1000",
                        {{"block", block}});
        transaction.Commit();
    }

    void init()
    {
        db->failing = false;
        TDbTransaction transaction(*db);
        db->Execute("delete from dbo.Few", {});
        const struct
        {
            const char *code, *name;
            QVariant group, amount;
            bool active;
            QVariant day, notes;
        } few[] = {
            {"A1", "Apple", 1, 12.5, true, QDate(2026, 7, 1).startOfDay(), 5},
            {"B2", "O'Brien", 2, -0.001, false, QDate(1899, 12, 30).startOfDay(), {}},
            {"C3", "100% _[x]\\ \"q\"", 3, {}, true, {}, {}},
            {"D4", "Dog, cat", {}, 1234567.25, false, QDate(2025, 12, 31).startOfDay(), {}},
            {"E5", "apple pie", 2, 3, false, {}, {}},
        };
        for (const auto &row : few)
            db->Execute("insert dbo.Few (cCode, cName, iGroup, fAmount, bActive, dDay, idNotes) "
                        "values (:code, :name, :grp, :amount, :active, :day, :notes)",
                        {{"code", row.code},
                         {"name", row.name},
                         {"grp", row.group},
                         {"amount", row.amount},
                         {"active", row.active},
                         {"day", row.day},
                         {"notes", row.notes}});
        transaction.Commit();
        db->Reset();
    }

    void cleanupTestCase() { SetMainConnection(nullptr); }

    // ---- reading

    void PagingGivesTheWholeOrder_data()
    {
        QTest::addColumn<QString>("sort");
        QTest::addColumn<bool>("descending");
        for (const char *field : {"cCode", "iGroup", "fAmount", "bActive", "dDay", "idNotes", "idItem"}) {
            QTest::addRow("%s", field) << field << false;
            QTest::addRow("%s desc", field) << field << true;
        }
    }
    void PagingGivesTheWholeOrder()
    {
        QFETCH(QString, sort);
        QFETCH(bool, descending);
        const QString direction = descending ? " desc" : "";
        const QString byKey = sort == "idItem" ? QString() : ", idItem" + direction;
        const QList<int> all = KeysOf("select idItem from dbo.Items order by " + sort + direction + byKey);
        auto grid = Opened("dbo.Items", sort, descending ? TGridOrder::Descending : TGridOrder::Ascending);
        QAbstractItemModel *model = grid->model();
        QVERIFY(model->rowCount() < all.size());
        while (model->canFetchMore({}))
            model->fetchMore({});
        QCOMPARE(Keys(*grid), all);

        grid->OpenList(Source("dbo.Items"));
        grid->JumpToLast();
        QCOMPARE(grid->FocusedKey(), all.last());
        Settle();
        QVERIFY(!model->canFetchMore({}));
        for (int i = 0; i < 20 && model->rowCount() < all.size(); ++i)
            Scroll(*grid, 0);
        QCOMPARE(Keys(*grid), all);

        // From the midst, and from a row without a value, in both directions.
        for (const int key : {all[1234], all[40], all[2580]}) {
            grid->OpenList(Source("dbo.Items"));
            QVERIFY(grid->FocusKey(key));
            Settle();
            QCOMPARE(grid->FocusedKey(), key);
            QVERIFY(IsStretchOf(Keys(*grid), all));
        }
    }

    void OpeningReadsAPageThenFillsAndCountsLater()
    {
        TqsGrid grid;
        grid.SetColumns(ItemColumns(), "cCode");
        grid.resize(700, 400);
        grid.show();
        QSignalSpy counted(&grid, &TqsGrid::RecordCountChanged);
        grid.OpenList(Source("dbo.Many"));
        QCOMPARE(db->statements.size(), 1);
        QCOMPARE(db->rows, 100);
        QCOMPARE(grid.model()->rowCount(), 100);
        QCOMPARE(grid.RecordCount(), -1);
        QCOMPARE(grid.FocusedKey(), 1);
        QTRY_COMPARE(grid.RecordCount(), 100000);
        QCOMPARE(counted.size(), 1);
        QVERIFY(db->statements.filter("count(").size() < 6);
        QVERIFY(db->statements.last().contains("count("));
        QVERIFY2(db->rows < 2500, qPrintable(QString::number(db->rows)));
        QVERIFY(grid.model()->rowCount() >= 2000);
        QVERIFY(db->statements.filter(" limit ", Qt::CaseInsensitive).isEmpty());
    }

    void TheWindowIsBoundedAndTheFocusOutlivesIt()
    {
        auto grid = Opened("dbo.Many", "cCode");
        const QList<int> all = KeysOf("select idItem from dbo.Many order by cCode, idItem");
        QSignalSpy moved(grid.get(), &TqsGrid::FocusedRecordChanged);
        QVERIFY(grid->FocusKey(all[3]));
        int most = 0, top = 0;
        bool steady = true;
        for (int i = 0; i < 60; ++i) {
            grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum());
            top = TopKey(*grid);
            Settle();
            steady = steady && TopKey(*grid) == top;
            most = std::max(most, grid->model()->rowCount());
        }
        QVERIFY(steady);
        QVERIFY2(most <= 6250, qPrintable(QString::number(most)));
        QVERIFY(IsStretchOf(Keys(*grid), all));
        QVERIFY(all.indexOf(top) > 6500);
        QVERIFY(!Keys(*grid).contains(all[3]));
        QCOMPARE(grid->FocusedKey(), all[3]);
        QVERIFY(grid->RecordFocused(true));
        QCOMPARE(grid->CurrentValue(u"cCode").toString(), "M000003");
        QCOMPARE(moved.size(), 1);

        // Re-reading leaves what is looked at, and the far focus.
        top = TopKey(*grid);
        grid->ReReadList(Source("dbo.Many"), false, 0);
        Settle();
        QCOMPARE(TopKey(*grid), top);
        QCOMPARE(grid->FocusedKey(), all[3]);

        // Going up again the window lets go of its lower end; the focused row is selected when it is met.
        for (int i = 0; i < 200 && !Keys(*grid).contains(all[0]); ++i) {
            grid->verticalScrollBar()->setValue(0);
            top = TopKey(*grid);
            Settle();
            QCOMPARE(TopKey(*grid), top);
        }
        QVERIFY(IsStretchOf(Keys(*grid), all));
        QVERIFY(grid->model()->rowCount() <= 6250);
        QCOMPARE(grid->currentIndex().data(TqsGrid::KeyRole).toInt(), all[3]);
        QVERIFY(grid->selectionModel()->isRowSelected(grid->currentIndex().row()));
        QCOMPARE(moved.size(), 1);
    }

    void KeysWorkAcrossTheEdges()
    {
        auto grid = Opened("dbo.Many", "cCode");
        const QList<int> all = KeysOf("select idItem from dbo.Many order by cCode, idItem");
        QTest::keyClick(grid.get(), Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(grid->FocusedKey(), all.last());
        QVERIFY(IsFocusVisible(*grid));
        QVERIFY(!grid->model()->canFetchMore({}));
        QTest::keyClick(grid.get(), Qt::Key_Down);
        QCOMPARE(grid->FocusedKey(), all.last());
        int presses = 0;
        while (all.indexOf(grid->FocusedKey()) > 98000 && ++presses < 1000)
            QTest::keyClick(grid.get(), Qt::Key_PageUp); // no idle moment between
        QVERIFY(presses < 1000);
        QVERIFY(IsStretchOf(Keys(*grid), all));
        QTest::keyClick(grid.get(), Qt::Key_Home);
        QCOMPARE(grid->FocusedKey(), all.first());
        QTRY_COMPARE(grid->RecordCount(), 100000);
        db->Reset();
        QTest::keyClick(grid.get(), Qt::Key_End);
        QTest::keyClick(grid.get(), Qt::Key_Home);
        QTest::qWait(200); // longer than the pause before counting
        QVERIFY(db->statements.filter("count(").isEmpty());
        for (int i = 0; i < 300; ++i)
            QTest::keyClick(grid.get(), Qt::Key_Down);
        QCOMPARE(grid->FocusedKey(), all[300]);
        QVERIFY(IsFocusVisible(*grid));
        int before = 300, page = 0;
        for (int i = 0; i < 200; ++i) {
            QTest::keyClick(grid.get(), Qt::Key_PageDown);
            const int now = int(all.indexOf(grid->FocusedKey()));
            QVERIFY(now > before);
            if (i < 100) // always a whole page
                QCOMPARE(now - before, page ? page : page = now - before);
            before = now;
        }
        QVERIFY(before > 2100);

        // From a focus that was scrolled out of the window the cursor goes on where it was.
        QVERIFY(grid->FocusKey(all[7]));
        for (int i = 0; i < 60; ++i)
            Scroll(*grid, grid->verticalScrollBar()->maximum());
        QVERIFY(!grid->currentIndex().isValid());
        QTest::keyClick(grid.get(), Qt::Key_Down);
        QCOMPARE(grid->FocusedKey(), all[8]);
        QVERIFY(IsFocusVisible(*grid));

        // A row chosen meanwhile is the focus, also when the former one is met again.
        for (int i = 0; i < 60 && grid->currentIndex().isValid(); ++i)
            Scroll(*grid, grid->verticalScrollBar()->maximum());
        QVERIFY(!grid->currentIndex().isValid());
        grid->setCurrentIndex(grid->model()->index(0, 0));
        const int chosen = grid->FocusedKey();
        QVERIFY(chosen != all[8]);
        for (int i = 0; i < 200 && !Keys(*grid).contains(all[8]); ++i)
            Scroll(*grid, 0);
        QVERIFY(Keys(*grid).contains(all[8]));
        QCOMPARE(grid->FocusedKey(), chosen);
    }

    // ---- keeping the place

    void ReReadingKeepsThePlace_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("top");
        QTest::newRow("small list") << "dbo.Few" << 2 << 0;
        QTest::newRow("in the midst") << "dbo.Many" << 50000 << -7;
        QTest::newRow("near the start") << "dbo.Many" << 40 << -3;
        QTest::newRow("near the end") << "dbo.Many" << 99990 << -5;
        QTest::newRow("focus above the viewport") << "dbo.Many" << 50000 << 80;
        QTest::newRow("focus below the viewport") << "dbo.Many" << 50000 << -60;
    }
    void ReReadingKeepsThePlace()
    {
        QFETCH(QString, table);
        QFETCH(int, position);
        QFETCH(int, top);
        auto grid = Opened(table, "cCode");
        const QList<int> all = KeysOf("select idItem from " + table + " order by cCode, idItem");
        const int key = all[position];
        QVERIFY(grid->FocusKey(key));
        Settle();
        grid->setCurrentIndex(grid->currentIndex().siblingAtColumn(3));
        Scroll(*grid, grid->currentIndex().row() + top);
        const int distance = Distance(*grid);
        const int topKey = TopKey(*grid);
        QSignalSpy moved(grid.get(), &TqsGrid::FocusedRecordChanged);
        db->Reset();
        grid->ReReadList(Source(table), false, 0);
        QVERIFY2(db->rows < 500, qPrintable(QString::number(db->rows)));
        QVERIFY(table == "dbo.Many" || db->statements.size() == 1);
        Settle();
        QCOMPARE(grid->FocusedKey(), key);
        QCOMPARE(grid->currentIndex().column(), 3);
        QCOMPARE(Distance(*grid), distance);
        QCOMPARE(TopKey(*grid), topKey);
        QCOMPARE(moved.size(), 0);
        QVERIFY(IsStretchOf(Keys(*grid), all));
    }

    void LocatingReadsAroundTheRow()
    {
        auto grid = Opened("dbo.Many", "cCode");
        QTRY_VERIFY(grid->RecordCount() > 0);
        QSignalSpy moved(grid.get(), &TqsGrid::FocusedRecordChanged);
        for (const int key : {70123, 100000, 1, 33000}) {
            db->Reset();
            grid->ReReadList(Source("dbo.Many"), true, key);
            QVERIFY2(db->rows < 500, qPrintable(QString::number(db->rows)));
            QVERIFY2(db->statements.size() <= 4, qPrintable(db->statements.join('\n')));
            QCOMPARE(grid->FocusedKey(), key);
            QCOMPARE(moved.takeLast().first().toInt(), key);
            QVERIFY(moved.isEmpty());
            Settle();
            QVERIFY(IsFocusVisible(*grid));
        }
        // A row that the list does not hold leaves the place.
        const int distance = Distance(*grid);
        grid->ReReadList(Source("dbo.Many"), true, 999999);
        QCOMPARE(grid->FocusedKey(), 33000);
        QCOMPARE(Distance(*grid), distance);
        QVERIFY(moved.isEmpty());
        // A renamed row is found at its new place.
        db->Begin();
        db->Execute("update dbo.Many set cCode = 'Z' where idItem = 33000", {});
        grid->ReReadList(Source("dbo.Many"), true, 33000);
        QCOMPARE(Keys(*grid).last(), 33000);
        QCOMPARE(grid->FocusedKey(), 33000);
        QVERIFY(IsFocusVisible(*grid));
        db->Rollback();
    }

    void AVanishedRowPassesTheFocusOn_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<int>("position");
        QTest::newRow("first of few") << "dbo.Few" << 0;
        QTest::newRow("midst of few") << "dbo.Few" << 2;
        QTest::newRow("last of few") << "dbo.Few" << 4;
        QTest::newRow("midst of many") << "dbo.Many" << 50000;
        QTest::newRow("last of many") << "dbo.Many" << 99999;
    }
    void AVanishedRowPassesTheFocusOn()
    {
        QFETCH(QString, table);
        QFETCH(int, position);
        auto grid = Opened(table, "cCode");
        QList<int> all = KeysOf("select idItem from " + table + " order by cCode, idItem");
        QVERIFY(grid->FocusKey(all[position]));
        Settle();
        const int top = grid->verticalScrollBar()->value(), row = grid->currentIndex().row();
        db->Begin();
        db->Execute("delete from " + table + " where idItem = :id", {{"id", all[position]}});
        all.removeAt(position);
        grid->ReReadList(Source(table), false, 0);
        QCOMPARE(grid->FocusedKey(), all.value(position, all.last()));
        if (table == "dbo.Few")
            QCOMPARE(grid->currentIndex().row(), std::min(row, 3));
        else if (position < 60000)
            QCOMPARE(Distance(*grid), row - top);
        db->Rollback();
    }

    void AnEmptiedListHasNoFocusAndAFilledOneHas()
    {
        auto grid = Opened("dbo.Few", "cCode");
        QSignalSpy moved(grid.get(), &TqsGrid::FocusedRecordChanged);
        grid->ReReadList(Source("dbo.Few", "iGroup = :g", {{"g", 99}}), false, 0);
        QCOMPARE(grid->model()->rowCount(), 0);
        QVERIFY(!grid->HasCurrent());
        QVERIFY(!grid->CurrentValue(u"cCode").isValid());
        QCOMPARE(moved.takeFirst().first().toInt(), 0);
        QCOMPARE(grid->RecordCount(), 0);
        grid->ReReadList(Source("dbo.Few", "iGroup = :g", {{"g", 2}}), false, 0);
        QCOMPARE(grid->model()->rowCount(), 2);
        QCOMPARE(moved.takeFirst().first().toInt(), grid->FocusedKey());
        QCOMPARE(grid->CurrentValue(u"CCODE").toString(), "B2");
    }

    void TheSiblingIsFocusedAfterADelete_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<int>("position");
        QTest::addColumn<bool>("reReadFirst");
        for (const bool reReadFirst : {false, true}) {
            const char *order = reReadFirst ? "read first" : "sibling first";
            QTest::addRow("midst, %s", order) << "dbo.Few" << 1 << reReadFirst;
            QTest::addRow("last, %s", order) << "dbo.Few" << 4 << reReadFirst;
            QTest::addRow("many, %s", order) << "dbo.Many" << 51000 << reReadFirst;
            QTest::addRow("last of many, %s", order) << "dbo.Many" << 99999 << reReadFirst;
        }
    }
    void TheSiblingIsFocusedAfterADelete()
    {
        QFETCH(QString, table);
        QFETCH(int, position);
        QFETCH(bool, reReadFirst);
        auto grid = Opened(table, "cCode");
        QList<int> all = KeysOf("select idItem from " + table + " order by cCode, idItem");
        const int deleted = all[position];
        QVERIFY(grid->FocusKey(deleted));
        grid->GetSiblingForDelete();
        QCOMPARE(grid->FocusedKey(), deleted);
        db->Begin();
        db->Execute("delete from " + table + " where idItem = :id", {{"id", deleted}});
        all.removeAt(position);
        const int expected = all.value(position, all.last());
        if (reReadFirst)
            grid->ReReadList(Source(table), false, 0);
        grid->SetSiblingAfterDelete();
        QCOMPARE(grid->FocusedKey(), expected);
        QVERIFY(!Keys(*grid).contains(deleted));
        if (!reReadFirst)
            grid->ReReadList(Source(table), false, 0);
        QCOMPARE(grid->FocusedKey(), expected);
        QVERIFY(IsFocusVisible(*grid));
        QVERIFY(IsStretchOf(Keys(*grid), all));
        db->Rollback();
    }

    void TheOnlyRowDeletedLeavesNone()
    {
        db->Execute("delete from dbo.Few where cCode <> 'A1'", {});
        auto grid = Opened("dbo.Few", "cCode");
        grid->GetSiblingForDelete();
        db->Execute("delete from dbo.Few", {});
        grid->SetSiblingAfterDelete();
        QCOMPARE(grid->model()->rowCount(), 0);
        QCOMPARE(grid->FocusedKey(), 0);
    }

    // ---- sorting, searching, filtering

    void AHeadingSorts()
    {
        auto grid = Opened("dbo.Items", "cCode");
        const int key = grid->FocusedKey();
        QSignalSpy layout(grid.get(), &TqsGrid::LayoutChanged);
        QHeaderView *header = grid->horizontalHeader();
        const auto click = [&](int column) {
            QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                              {header->sectionViewportPosition(column) + 20, header->height() / 2});
        };
        click(2);
        QCOMPARE(header->sortIndicatorSection(), 2);
        QCOMPARE(header->sortIndicatorOrder(), Qt::AscendingOrder);
        QVERIFY(IsStretchOf(Keys(*grid), KeysOf("select idItem from dbo.Items order by iGroup, idItem")));
        click(2);
        QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
        QVERIFY(IsStretchOf(Keys(*grid), KeysOf("select idItem from dbo.Items order by iGroup desc, idItem desc")));
        QCOMPARE(grid->FocusedKey(), key);
        QVERIFY(IsFocusVisible(*grid));
        QCOMPARE(layout.size(), 2);
        QCOMPARE(grid->SaveLayout()["sort"].toString(), "iGroup");

        QSignalSpy failed(grid.get(), &TqsGrid::QueryFailed);
        const QList<int> before = Keys(*grid);
        db->failing = true;
        click(0);
        QCOMPARE(failed.size(), 1);
        QCOMPARE(failed.first().first().toString(), "The server is gone.");
        QCOMPARE(Keys(*grid), before);
        QCOMPARE(grid->FocusedKey(), key);
        QCOMPARE(header->sortIndicatorSection(), 2);
        QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
    }

    void Search_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("found"); // "" for none
        QTest::addColumn<bool>("next");
        QTest::addColumn<bool>("backwards");
        const auto add = [](const char *name, const QString &text, const char *from, const char *found,
                            bool next = false, bool backwards = false) {
            QTest::newRow(name) << text << from << found << next << backwards;
        };
        add("stays on a row that fits", "apple", "A1", "A1");
        add("next, without regard to case", "apple", "A1", "E5", true);
        add("wraps", "apple", "E5", "A1", true);
        add("wraps to itself", "brien", "B2", "B2", true);
        add("backwards", "apple", "D4", "A1", true, true);
        add("backwards wraps", "apple", "A1", "E5", true, true);
        add("backwards stays", "apple", "E5", "E5", false, true);
        add("apostrophe", "O'Br", "A1", "B2");
        add("quote and end", "'; drop table dbo.Few --", "A1", "");
        add("percent is a character", "100%", "A1", "C3");
        add("percent alone", "%", "A1", "C3");
        add("underscore is no wildcard", "A_p", "C3", "");
        add("underscore", "_", "A1", "C3");
        add("bracket", "[x]", "A1", "C3");
        add("bracket opens no class", "[a]", "C3", "");
        add("backslash", "]\\ ", "A1", "C3");
        add("number", "234567", "A1", "D4");
        add("number as shown", "12.50", "B2", "A1");
        add("group by its display text", "second", "A1", "B2");
        add("group by the text of NULL", "nobody", "A1", "D4");
        add("date", "1/07/2026", "C3", "A1");
        add("month", "12/2025", "A1", "D4");
        add("hidden column", QStringLiteral("hidden"), "A1", "");
        add("nothing", "zebra", "C3", "");
        add("10 kB", QString(10000, u'%'), "C3", "");
    }
    void Search()
    {
        QFETCH(QString, text);
        QFETCH(QString, from);
        QFETCH(QString, found);
        QFETCH(bool, next);
        QFETCH(bool, backwards);
        QList<TGridColumn> columns = ItemColumns();
        columns[2].displayValues = {{1, "First"}, {2, "Second"}, {QVariant(), "Nobody"}};
        columns[7].displayValues = {{KeysOf("select idItem from dbo.Few where cCode = 'E5'").first(), "hidden"}};
        TqsGrid grid;
        grid.SetColumns(columns, "cCode");
        grid.OpenList(Source("dbo.Few"));
        QSignalSpy failed(&grid, &TqsGrid::QueryFailed);
        QVERIFY(grid.Search(from, false));
        QCOMPARE(grid.CurrentValue(u"cCode").toString(), from);
        QCOMPARE(grid.Search(text, next, backwards), !found.isEmpty());
        QCOMPARE(grid.CurrentValue(u"cCode").toString(), found.isEmpty() ? from : found);
        // The filter means the same by "contains".
        grid.SetTextFilter(text);
        QCOMPARE(grid.model()->rowCount() > 0, !found.isEmpty());
        if (!found.isEmpty())
            QVERIFY(Keys(grid).contains(KeysOf("select idItem from dbo.Few where cCode = '" + found + "'").first()));
        QCOMPARE(failed.size(), 0);
        QVERIFY(db->longestText <= 4000); // what SQL Server takes for a pattern
        QCOMPARE(KeysOf("select count(*) as n from dbo.Few").first(), 5);
    }

    void SearchReachesBeyondTheWindow()
    {
        auto grid = Opened("dbo.Many", "cCode");
        const int key = KeysOf("select idItem from dbo.Many where cCode = 'NM00077745'").first();
        db->Reset();
        QVERIFY(grid->FocusKey(Keys(*grid)[1500])); // in the window, out of sight
        QVERIFY(IsFocusVisible(*grid));
        db->Reset();
        QVERIFY(grid->Search("00077745", false));
        QVERIFY(db->rows < 500);
        QCOMPARE(grid->FocusedKey(), key);
        Settle();
        QVERIFY(IsFocusVisible(*grid));
        QTest::keyClicks(grid.get(), "m00099");
        QCOMPARE(grid->CurrentValue(u"cCode").toString().left(7),
                 "NM00099"); // the next one below that holds it: letters search too
    }

    void FilteringKeepsTheFocusAndCounts()
    {
        auto grid = Opened("dbo.Many", "cCode");
        const QList<int> all = KeysOf("select idItem from dbo.Many order by cCode, idItem");
        QVERIFY(grid->FocusKey(all[60000]));
        const QString name = grid->CurrentValue(u"cName").toString();
        const QList<int> fits =
            KeysOf("select idItem from dbo.Many where cName like '%" + name + "%' order by cCode, idItem");
        grid->SetTextFilter(name.toUpper());
        QCOMPARE(grid->TextFilter(), name.toUpper());
        QCOMPARE(grid->FocusedKey(), all[60000]);
        QTRY_COMPARE(grid->RecordCount(), fits.size());
        QVERIFY(IsStretchOf(Keys(*grid), fits));
        // Locating a row that the filter hides keeps the place.
        const int other = *std::find_if(all.begin() + 60000, all.end(), [&](int key) { return !fits.contains(key); });
        grid->ReReadList(Source("dbo.Many"), true, other);
        QCOMPARE(grid->FocusedKey(), all[60000]);
        QVERIFY(!grid->FocusKey(other));
        // Nothing fits, and back again.
        grid->SetTextFilter("no such text");
        QCOMPARE(grid->RecordCount(), 0);
        QCOMPARE(grid->FocusedKey(), 0);
        grid->SetTextFilter(QString());
        QCOMPARE(grid->FocusedKey(), all[60000]);
        QTRY_COMPARE(grid->RecordCount(), 100000);
    }

    void OnlyVisibleColumnsAreFiltered()
    {
        auto grid = Opened("dbo.Few", "cCode");
        grid->SetTextFilter("apple");
        QCOMPARE(grid->model()->rowCount(), 2);
        grid->SetColumnVisible(u"cName", false);
        QCOMPARE(grid->model()->rowCount(), 0);
        grid->SetColumnVisible(u"cName", true);
        QCOMPARE(grid->model()->rowCount(), 2);
        QSignalSpy failed(grid.get(), &TqsGrid::QueryFailed);
        db->failing = true;
        grid->SetTextFilter("dog");
        QVERIFY(!grid->Search("pie", false));
        QCOMPARE(failed.size(), 2);
        QCOMPARE(grid->TextFilter(), "apple");
        QCOMPARE(grid->model()->rowCount(), 2);
    }

    void AFailingQueryLeavesTheRows()
    {
        auto grid = Opened("dbo.Many", "cCode");
        QVERIFY(grid->FocusKey(5));
        const QList<int> before = Keys(*grid);
        QSignalSpy failed(grid.get(), &TqsGrid::QueryFailed);
        db->failing = true;
        QVERIFY_EXCEPTION_THROWN(grid->OpenList(Source("dbo.Few")), TDbError);
        QVERIFY_EXCEPTION_THROWN(grid->ReReadList(Source("dbo.Many"), true, 9), TDbError);
        db->failing = false;
        QVERIFY_EXCEPTION_THROWN(grid->OpenList(Source("dbo.Nowhere")), TDbError);
        QVERIFY_EXCEPTION_THROWN(grid->ReReadList(Source("dbo.Many", "cNone = 1"), false, 0), TDbError);
        QCOMPARE(Keys(*grid), before);
        QCOMPARE(grid->FocusedKey(), 5);
        QCOMPARE(failed.size(), 0);
        db->failing = true;
        for (const int above : {5, 0}) { // close to the window's end and at it
            for (int i = 0; i < 5; ++i)
                Scroll(*grid, grid->verticalScrollBar()->maximum() - above);
        }
        QCOMPARE(failed.size(), 1); // told once
        QTest::keyClick(grid.get(), Qt::Key_End);
        QCOMPARE(failed.size(), 2);
        QCOMPARE(Keys(*grid), before);
        db->failing = false;
        grid->ReReadList(Source("dbo.Many"), false, 0);
        Scroll(*grid, grid->verticalScrollBar()->maximum());
        Scroll(*grid, grid->verticalScrollBar()->maximum());
        QVERIFY(grid->model()->rowCount() > before.size());
        db->failing = true;
        QVERIFY(grid->model()->canFetchMore({}));
        grid->model()->fetchMore({});
        QCoreApplication::processEvents();
        QCOMPARE(failed.size(), 3);
        QVERIFY(!grid->model()->canFetchMore({}));
    }

    // ---- ticks

    void TicksSurvive()
    {
        auto grid = Opened("dbo.Few", "cCode");
        const QList<int> all = KeysOf("select idItem from dbo.Few order by cCode");
        QVERIFY(!grid->model()->index(0, 0).data(Qt::CheckStateRole).isValid());
        grid->SetMultiSelect(true);
        QSignalSpy ticks(grid.get(), &TqsGrid::TicksChanged);
        QVERIFY(grid->FocusKey(all[3]));
        QTest::keyClick(grid.get(), Qt::Key_Space);
        QVERIFY(grid->model()->setData(grid->model()->index(0, 0), Qt::Checked, Qt::CheckStateRole));
        QVERIFY(grid->FocusKey(all[1]));
        QTest::keyClick(grid.get(), Qt::Key_Space);
        QCOMPARE(grid->TickedKeys(), (QList<int>{all[3], all[0], all[1]}));
        QCOMPARE(ticks.size(), 3);
        grid->SortBy("cName", TGridOrder::Descending);
        grid->SetTextFilter("pie");
        grid->ReReadList(Source("dbo.Few"), false, 0);
        grid->SetTextFilter(QString());
        QCOMPARE(grid->TickedKeys(), (QList<int>{all[3], all[0], all[1]}));
        for (int row = 0; row < 5; ++row) {
            const QModelIndex cell = grid->model()->index(row, 0);
            QCOMPARE(cell.data(Qt::CheckStateRole).toInt() == Qt::Checked,
                     grid->TickedKeys().contains(cell.data(TqsGrid::KeyRole).toInt()));
        }
        // The check boxes stay in front when the columns move.
        grid->horizontalHeader()->moveSection(1, 0);
        QVERIFY(grid->model()->index(0, 1).data(Qt::CheckStateRole).isValid());
        QVERIFY(!grid->model()->index(0, 0).data(Qt::CheckStateRole).isValid());
        QVERIFY(grid->FocusKey(all[1]));
        QTest::keyClick(grid.get(), Qt::Key_Space);
        db->Execute("delete from dbo.Few where idItem = :id", {{"id", all[0]}});
        grid->ReReadList(Source("dbo.Few"), false, 0);
        QVERIFY(!grid->TickedKeys().contains(all[0]));
        QCOMPARE(grid->TickedKeys().size(), 1);
    }

    // ---- what is shown

    void ValuesAreShown()
    {
        QList<TGridColumn> columns = ItemColumns();
        columns[2].display = [](const QVariant &value) { return "<" + value.toString() + ">"; };
        TqsGrid grid;
        grid.SetColumns(columns, "cCode");
        grid.OpenList(Source("dbo.Few"));
        QAbstractItemModelTester tester(grid.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        tester.setUseFetchMore(false);
        const auto shown = [&](int row, int role = Qt::DisplayRole) {
            QStringList texts;
            for (int column = 0; column < 7; ++column)
                texts += grid.model()->index(row, column).data(role).toString();
            return texts;
        };
        QCOMPARE(shown(0), (QStringList{"A1", "Apple", "<1>", "12.50", "\u2713", "01/07/2026", ""}));
        QCOMPARE(shown(0, Qt::AccessibleTextRole),
                 (QStringList{"A1", "Apple", "<1>", "12.50", "Yes", "01/07/2026", "Has a note"}));
        QCOMPARE(shown(1), (QStringList{"B2", "O'Brien", "<2>", "0.00", "", "", ""}));
        QCOMPARE(shown(1, Qt::AccessibleTextRole)[4], "No");
        QCOMPARE(shown(2)[3], "");
        QCOMPARE(grid.model()->index(0, 6).data(Qt::ToolTipRole).toString(), "Has a note");
        QVERIFY(!grid.model()->index(1, 6).data(Qt::ToolTipRole).isValid());
        QCOMPARE(grid.model()->index(0, 3).data(TqsGrid::RawValueRole).toDouble(), 12.5);
        QVERIFY(grid.model()->index(0, 3).data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
        QVERIFY(grid.model()->index(0, 0).data(Qt::TextAlignmentRole).toInt() & Qt::AlignLeft);
        grid.JumpToLast();
        grid.SetTextFilter("b");
        grid.SetTextFilter("");
        grid.ReReadList(Source("dbo.Few"), false, 0);
    }

    void ExportIsCsv()
    {
        auto grid = Opened("dbo.Few", "cCode", TGridOrder::Descending);
        grid->SetColumnCaption(u"cName", "Name, \"full\"");
        grid->horizontalHeader()->moveSection(1, 0);
        grid->SetColumnVisible(u"dDay", false);
        db->Execute("update dbo.Few set cName = :name where cCode = 'D4'",
                    {{"name", QString::fromUtf8("M\u0101ori\nline")}});
        QBuffer file;
        QVERIFY(file.open(QIODevice::WriteOnly));
        grid->ExportCsv(file);
        QCOMPARE(QString::fromUtf8(file.data()),
                 QString::fromUtf8("\"Name, \"\"full\"\"\",Code,Group,Amount,Active,Notes\r\n"
                                   "apple pie,E5,2,3.00,No,\r\n"
                                   "\"M\u0101ori\nline\",D4,,1234567.25,No,\r\n"
                                   "\"100% _[x]\\ \"\"q\"\"\",C3,3,,Yes,\r\n"
                                   "O'Brien,B2,2,0.00,No,\r\n"
                                   "Apple,A1,1,12.50,Yes,Yes\r\n"));
        // All of a long list, not the window; and what cannot be written is told.
        grid->OpenList(Source("dbo.Items"));
        QBuffer longFile;
        QVERIFY(longFile.open(QIODevice::WriteOnly));
        grid->ExportCsv(longFile);
        QCOMPARE(longFile.data().count("\r\n"), 2601);
        QBuffer closed;
        QVERIFY(closed.open(QIODevice::ReadOnly));
        QTest::ignoreMessage(QtWarningMsg, "QIODevice::write (QBuffer): ReadOnly device");
        QVERIFY_EXCEPTION_THROWN(grid->ExportCsv(closed), TDbError);
    }

    void CopyAndActivate()
    {
        auto grid = Opened("dbo.Few", "cCode");
        QSignalSpy activated(grid.get(), &TqsGrid::RecordActivated);
        QTest::keyClick(grid.get(), Qt::Key_Down);
        QTest::keyClick(grid.get(), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(),
                 "Code\tName\tGroup\tAmount\tActive\tDay\tNotes\nB2\tO'Brien\t2\t0.00\tNo\t\t\n");
        QTest::keyClick(grid.get(), Qt::Key_Return);
        QCOMPARE(activated.size(), 1);
        const QPoint cell = grid->visualRect(grid->model()->index(3, 1)).center();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, cell);
        QCOMPARE(activated.size(), 2);
        QCOMPARE(activated[0].first().toInt() + 2, activated[1].first().toInt());
        // A click beside the rows changes nothing.
        const int key = grid->FocusedKey();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, {50, grid->viewport()->height() - 5});
        QCOMPARE(grid->FocusedKey(), key);
        QVERIFY(grid->selectionModel()->isRowSelected(grid->currentIndex().row()));
    }

    // ---- layouts

    void LayoutsComeBack()
    {
        auto grid = Opened("dbo.Few", "cCode");
        grid->horizontalHeader()->moveSection(3, 0);
        grid->setColumnWidth(1, 222);
        grid->SetColumnVisible(u"iGroup", false);
        grid->SortBy("cName", TGridOrder::Descending);
        const QVariantMap saved =
            QJsonDocument::fromJson(QJsonDocument::fromVariant(grid->SaveLayout()).toJson()).toVariant().toMap();
        auto other = Opened("dbo.Few", "cCode");
        QSignalSpy layout(other.get(), &TqsGrid::LayoutChanged);
        other->RestoreLayout(saved);
        QCOMPARE(layout.size(), 0);
        QCOMPARE(other->SaveLayout(), grid->SaveLayout());
        QCOMPARE(Keys(*other), Keys(*grid));
        QCOMPARE(other->columnWidth(1), 222);
        QVERIFY(other->isColumnHidden(2));
        QCOMPARE(other->horizontalHeader()->logicalIndex(0), 3);
    }

    void StrangeLayoutsDoNoHarm_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("nothing") << QByteArray("{}");
        QTest::newRow("unknown fields") << QByteArray(
            R"({"columns":[{"field":"cGone","width":50,"visible":true}],"sort":"cGone"})");
        QTest::newRow("no visible column") << QByteArray(
            R"({"columns":[{"field":"cCode","visible":false},{"field":"cName","visible":false},{"field":"iGroup","visible":false},
                {"field":"fAmount","visible":false},{"field":"bActive","visible":false},{"field":"dDay","visible":false},
                {"field":"idNotes","visible":false},{"field":"idItem","visible":true}]})");
        QTest::newRow("nonsense") << QByteArray(
            R"({"columns":[7,{"field":"cCode","width":-4},{"field":"cCode","width":99},"x"],"sort":3,"descending":"?"})");
        QTest::newRow("internal column") << QByteArray(R"({"columns":[{"field":"idItem","width":90,"visible":true}]})");
    }
    void StrangeLayoutsDoNoHarm()
    {
        QFETCH(QByteArray, json);
        auto grid = Opened("dbo.Few", "cCode");
        const QList<int> before = Keys(*grid);
        QVERIFY(!QJsonDocument::fromJson(json).isNull());
        grid->RestoreLayout(QJsonDocument::fromJson(json).toVariant().toMap());
        for (int column = 0; column < 7; ++column)
            QVERIFY(!grid->isColumnHidden(column));
        QVERIFY(grid->isColumnHidden(7));
        QVERIFY(grid->columnWidth(0) >= 20);
        QCOMPARE(Keys(*grid), before);
    }

    void TheColumnChooserShowsAndHides()
    {
        QList<TGridColumn> columns = ItemColumns();
        columns += {"fAmount", "Rate / Unit", Kind::Float, 80, false};
        TqsGrid grid;
        grid.SetColumns(columns, "cCode");
        grid.resize(700, 400);
        grid.show();
        grid.OpenList(Source("dbo.Few"));
        QSignalSpy layout(&grid, &TqsGrid::LayoutChanged);
        const auto trigger = [&grid](const QString &name) {
            Q_EMIT grid.horizontalHeader()->customContextMenuRequested({5, 5});
            QMenu *menu = grid.findChild<QMenu *>("mnuColumns");
            QAction *action = menu ? menu->findChild<QAction *>(name) : nullptr;
            const bool can = action && action->isEnabled();
            if (can)
                action->trigger();
            if (menu)
                menu->close();
            return can;
        };
        QVERIFY(!trigger("mniColumn_idItem"));
        QVERIFY(trigger("mniColumn_cCode"));
        QVERIFY(grid.isColumnHidden(0));
        QVERIFY(trigger("mniColumn_fAmount#2"));
        QVERIFY(!grid.isColumnHidden(8));
        QVERIFY(!grid.isColumnHidden(3));
        QCOMPARE(grid.model()->index(0, 8).data().toString(), "12.50");
        for (const char *field : {"cName", "iGroup", "fAmount", "fAmount#2", "bActive", "dDay"})
            QVERIFY(trigger(QStringLiteral("mniColumn_") + field));
        QVERIFY(!trigger("mniColumn_idNotes")); // the last one stays
        QVERIFY(!grid.isColumnHidden(6));
        QVERIFY(grid.HasCurrent());
        QCOMPARE(layout.size(), 8);
        grid.SortBy("cName", TGridOrder::Descending);
        QVERIFY(trigger("mniBestFit"));
        QVERIFY(trigger("mniResetLayout"));
        QVERIFY(!grid.isColumnHidden(0));
        QVERIFY(grid.isColumnHidden(8));
        QCOMPARE(grid.horizontalHeader()->sortIndicatorSection(), 0);
        QCOMPARE(grid.columnWidth(0), 120 * grid.logicalDpiX() / 96);
        QCOMPARE(Keys(grid), KeysOf("select idItem from dbo.Few order by cCode"));
    }
};

QTEST_MAIN(t_grid)
#include "t_grid.moc"
