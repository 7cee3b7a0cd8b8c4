// SPDX-License-Identifier: Apache-2.0
#include "embedded/TranslatorWorker.h"

namespace embedded {

using Kind = Expr::Kind;

QString Worker::SqlAlias(const QString &alias) const
{
    return expansion ? u"%1~%2"_s.arg(alias, QString::number(expansion->serial)) : alias;
}

const Table &Worker::ResolveTable(const QString &name, Place place)
{
    QString actual = name;
    if (name.startsWith(u'@'))
        actual = tables ? tables(name) : QString();
    const Table *table = actual.isEmpty() ? nullptr : catalogue.FindTable(actual);
    if (!table) {
        if (name.startsWith(u'@'))
            Unknown(1087, u"Must declare the table variable \"%1\"."_s.arg(name), place, name);
        Unknown(208, u"Invalid object name '%1'."_s.arg(name), place, name);
    }
    if (name.startsWith(u'@') || name.startsWith(u'#')) {
        if (definition || expansion)
            Refuse(name + u" in a definition"_s, place);
        result.temporary = true;
    }
    return *table;
}

void Worker::AddSource(const QString &alias, const QList<Column> &columns, Place place)
{
    for (const Source &source : std::as_const(scope->sources)) {
        if (source.alias.compare(alias, Qt::CaseInsensitive) == 0)
            Fail(Error::Kind::Syntax, 1013,
                 u"The object name \"%1\" stands more than once in the FROM clause. Use correlation names to "
                 "distinguish them."_s.arg(alias),
                 place, alias);
    }
    scope->sources.append({alias, SqlAlias(alias), columns});
}

QString Worker::TableName(const Table &table)
{
    return (table.name.startsWith(u'#') || table.name.startsWith(u'@') ? u"temp."_s : QString()) +
           QuoteName(table.name);
}

QString Worker::From(const TableRef &ref)
{
    switch (ref.kind) {
    case TableRef::Kind::Table: {
        const Table &table = ResolveTable(ref.name, ref.place);
        const QString alias = ref.alias.isEmpty() ? ref.name : ref.alias;
        AddSource(alias, table.columns, ref.place);
        const QString sqlAlias = SqlAlias(alias);
        return TableName(table) + (sqlAlias == table.name ? QString() : " AS "_L1 + QuoteName(sqlAlias));
    }
    case TableRef::Kind::Derived: {
        Scope *const outer = std::exchange(scope, nullptr); // a derived table sees nothing of its neighbours
        const QueryText query = TranslateQuery(*ref.query, Use::Derived);
        scope = outer;
        AddSource(ref.alias, query.columns, ref.place);
        return u'(' + query.sql + ") AS "_L1 + QuoteName(SqlAlias(ref.alias));
    }
    case TableRef::Kind::Function: {
        const CreateFunctionStatement &function = FindFunction(ref.name, true, ref.place);
        Scope *const outer = std::exchange(scope, nullptr);
        QHash<QString, Fragment> arguments = Arguments(function, ref.args, ref.place);
        scope = outer;
        QueryText query;
        {
            const Enter enter(*this, function.name, ref.place, std::move(arguments));
            query = TranslateQuery(*function.query, Use::Derived);
        }
        const QString alias = ref.alias.isEmpty() ? ref.name : ref.alias;
        AddSource(alias, query.columns, ref.place);
        return u'(' + query.sql + ") AS "_L1 + QuoteName(SqlAlias(alias));
    }
    case TableRef::Kind::Join:
        break;
    }
    static const QLatin1StringView words[] = {" JOIN "_L1, " JOIN "_L1, " LEFT JOIN "_L1, " RIGHT JOIN "_L1,
                                              " FULL JOIN "_L1};
    QString text = From(*ref.left) + words[int(ref.join)];
    const QString right = From(*ref.right);
    text += ref.right->kind == TableRef::Kind::Join ? u'(' + right + u')' : right;
    if (ref.on)
        text += " ON "_L1 + Translate(*ref.on).sql;
    return text;
}

QString Worker::FromList(const std::vector<std::unique_ptr<TableRef>> &list)
{
    QStringList texts;
    for (const std::unique_ptr<TableRef> &ref : list)
        texts.append(From(*ref));
    return texts.join(" JOIN "_L1);
}

Worker::Core Worker::TranslateCore(const SelectCore &core, Use use)
{
    if (scope && scope->inAggregate > 0)
        Fail(Error::Kind::Syntax, 130,
             u"Cannot perform an aggregate function on an expression containing an aggregate or a subquery."_s, {});
    Core text;
    text.scope->outer = scope;
    scope = text.scope.get();
    if (!core.from.empty())
        text.tail += " FROM "_L1 + FromList(core.from);
    if (core.where)
        text.tail += " WHERE "_L1 + Translate(*core.where).sql;
    QStringList groups;
    for (const ExprPtr &expr : core.groupBy) {
        const Fragment group = Translate(*expr);
        if (group.literal || group.sql.startsWith(u'?'))
            Fail(Error::Kind::Syntax, 164, u"Each GROUP BY expression must contain at least one column."_s, expr->place,
                 expr->text);
        groups.append(Distinct(group).sql);
        scope->groups.append(group.sql);
    }
    scope->clause = Clause::Items;
    for (const SelectItem &item : core.items)
        AddItem(text, item, use);
    if (!groups.isEmpty()) {
        text.tail += " GROUP BY "_L1 + groups.join(", "_L1);
        scope->aggregated = true;
    }
    if (core.having) {
        const QString having = Translate(*core.having).sql;
        text.tail += (scope->aggregated ? " HAVING "_L1 : " GROUP BY NULL HAVING "_L1) + having;
        scope->aggregated = true;
    }
    if (core.top) {
        scope = nullptr; // no column can decide how many rows there are
        const Fragment count = IntegerArgumentOf(*core.top);
        if (count.literal && count.literal->toLongLong() < 0)
            SyntaxError(core.top->text, core.top->place);
        // a negative LIMIT would be none at all
        text.limit = count.literal ? count.sql : u"max(ifnull(%1, 0), 0)"_s.arg(count.sql);
    }
    scope = text.scope->outer;
    return text;
}

void Worker::AddItem(Core &text, const SelectItem &item, Use use)
{
    if (use == Use::Exists && item.star)
        return; // what it selects does not matter
    if (!item.star) {
        text.items.append(Translate(*item.expr));
        text.names.append(!item.alias.isEmpty()           ? item.alias
                          : item.expr->kind == Kind::Name ? item.expr->text
                                                          : QString());
        return;
    }
    bool found = false;
    const QList<Source> sources = scope->sources;
    for (const Source &source : sources) {
        if (!item.alias.isEmpty() && source.alias.compare(item.alias, Qt::CaseInsensitive) != 0)
            continue;
        found = true;
        for (const Column &column : source.columns) {
            text.items.append(ColumnReference(*scope, source, column, item.place));
            text.names.append(column.name);
        }
    }
    if (!found && !item.alias.isEmpty())
        Unknown(107,
                u"The column prefix '%1' does not match with a table name or alias name used in the query."_s.arg(
                    item.alias),
                item.place, item.alias);
    if (!found)
        Fail(Error::Kind::Syntax, 263, u"Must specify table to select from."_s, item.place);
    if (text.items.size() > 1500)
        Refuse(u"A list of columns this long"_s, item.place);
}

void Worker::CheckGroups(const Core &core)
{
    if (!core.scope->aggregated || core.scope->ungrouped.isEmpty())
        return;
    const auto &[name, place] = core.scope->ungrouped.first();
    Fail(Error::Kind::Syntax, 8120,
         u"Column '%1' is invalid in the select list because it is not contained in either an aggregate function or "
         "the GROUP BY clause."_s.arg(name),
         place, name);
}

// `store`: the columns of `storeTable` into which INSERT puts the items, or variables when there is no such table.
Worker::QueryText Worker::TranslateQuery(const Query &query, Use use, const QList<const Column *> &store,
                                         const QString &storeTable)
{
    std::vector<Core> cores;
    bool top = false;
    for (const SelectCore &core : query.arms) {
        cores.push_back(TranslateCore(core, use == Use::Exists && query.arms.size() > 1 ? Use::Result : use));
        top |= core.top != nullptr;
        const qsizetype count = cores.back().items.size();
        if (count != cores.front().items.size())
            Fail(Error::Kind::Syntax, 205,
                 u"All queries combined using a UNION operator must have an equal number of expressions in their "
                 "target lists."_s,
                 query.place);
    }
    if (use == Use::Single && cores.front().items.size() != 1)
        Fail(Error::Kind::Syntax, 116,
             u"Only one expression can be specified in the select list when the subquery is not introduced with "
             "EXISTS."_s,
             query.place);
    if (!store.isEmpty() && cores.front().items.size() != store.size())
        Fail(Error::Kind::Syntax, store.size() < cores.front().items.size() ? 121 : 120,
             u"The select list for the INSERT statement does not have as many items as the insert list."_s,
             query.place);
    if (!query.orderBy.empty() && use != Use::Result && use != Use::Insert && !top)
        Fail(Error::Kind::Syntax, 1033,
             u"The ORDER BY clause is invalid in views, inline functions, derived tables and subqueries, unless TOP is "
             "also specified."_s,
             query.orderBy.front().expr->place);

    QueryText text;
    const bool exists = use == Use::Exists;
    if (!exists || cores.size() > 1)
        text.columns = Columns(query, cores, use, store, storeTable);
    for (size_t i = 0; i < cores.size(); ++i) {
        const SelectCore &core = query.arms[i];
        QString arm = core.distinct ? u"SELECT DISTINCT "_s : u"SELECT "_s;
        QStringList items;
        for (qsizetype column = 0; column < cores[i].items.size(); ++column) {
            Fragment item = cores[i].items[column];
            // Where rows are told apart, or the text is compared further out, it needs a collation.
            if (use == Use::Derived || core.distinct || cores.size() > 1)
                item = Distinct(item);
            items.append(use == Use::Derived ? item.sql + " AS "_L1 + QuoteName(text.columns[column].name) : item.sql);
        }
        arm += items.isEmpty() || (exists && cores.size() == 1) ? ExistsItems(cores[i]) : items.join(", "_L1);
        arm += cores[i].tail;
        if (!cores[i].limit.isEmpty() && cores.size() > 1)
            arm = u"SELECT * FROM (%1 LIMIT %2)"_s.arg(arm, cores[i].limit);
        if (i > 0)
            text.sql += query.all[i - 1] ? " UNION ALL "_L1 : " UNION "_L1;
        text.sql += arm;
    }
    if (!query.orderBy.empty())
        text.sql += OrderBy(query, cores);
    for (const Core &core : cores)
        CheckGroups(core);
    if (cores.size() == 1 && !cores.front().limit.isEmpty())
        text.sql += " LIMIT "_L1 + cores.front().limit;
    if (text.sql.size() > kMaxSql)
        Refuse(u"A query this large"_s, query.place);
    return text;
}

// EXISTS needs a row, whatever it holds; an aggregate makes a row of its own.
QString Worker::ExistsItems(const Core &core)
{
    QStringList items;
    for (const Fragment &item : core.items)
        items.append(item.sql);
    return items.isEmpty() || !core.scope->aggregated ? u"1"_s : items.join(", "_L1);
}

QList<Column> Worker::Columns(const Query &query, std::vector<Core> &cores, Use use, const QList<const Column *> &store,
                              const QString &storeTable)
{
    QList<Column> columns;
    for (qsizetype i = 0; i < cores.front().items.size(); ++i) {
        Column column;
        column.name = cores.front().names[i];
        column.trimmed = column.noCase = true;
        for (const Core &core : cores)
            column.type = Unify(column.type, core.items[i].type);
        for (Core &core : cores) {
            Fragment &item = core.items[i];
            if (!store.isEmpty())
                item = storeTable.isEmpty() ? Convert(item, store[i]->type, Purpose::Assign, query.place)
                                            : Store(item, *store[i], storeTable, query.place);
            else if (cores.size() > 1)
                item = Harmonise(item, column.type, query.place);
            column.trimmed &= item.trimmed || item.IsNull();
            if (item.IsNull())
                item.type = column.type;
        }
        column.noCase = (use == Use::Derived && column.type.IsText()) || cores.front().items[i].noCase;
        if (use == Use::Derived) {
            const auto same = [&column](const Column &other) {
                return other.name.compare(column.name, Qt::CaseInsensitive) == 0;
            };
            if (column.name.isEmpty())
                Fail(Error::Kind::Syntax, 8155, u"No column name was specified for column %1."_s.arg(i + 1),
                     query.place);
            if (std::any_of(columns.cbegin(), columns.cend(), same))
                Fail(Error::Kind::Syntax, 8156, u"The column '%1' was specified multiple times."_s.arg(column.name),
                     query.place, column.name);
        }
        columns.append(column);
    }
    return columns;
}

QString Worker::OrderBy(const Query &query, std::vector<Core> &cores)
{
    QStringList texts;
    Core &first = cores.front();
    for (const OrderItem &item : query.orderBy) {
        const Expr &expr = *item.expr;
        qsizetype position = -1;
        if (expr.kind == Kind::Integer) {
            position = expr.text.toLongLong() - 1;
            if (position < 0 || position >= first.items.size())
                Fail(
                    Error::Kind::Syntax, 108,
                    u"The ORDER BY position number %1 is out of range of the number of items in the select list."_s.arg(
                        expr.text),
                    expr.place, expr.text);
        } else if (expr.kind == Kind::Name && expr.qualifier.isEmpty()) {
            for (qsizetype i = 0; i < first.names.size() && position < 0; ++i) {
                if (first.names[i].compare(expr.text, Qt::CaseInsensitive) == 0)
                    position = i;
            }
        }
        QString text;
        if (position >= 0) {
            const Fragment &target = first.items[position];
            text = QString::number(position + 1);
            if (target.type.IsText() && !target.noCase)
                text += " COLLATE NOCASE"_L1;
        } else if (cores.size() > 1) {
            Fail(Error::Kind::Syntax, 104,
                 u"ORDER BY items must appear in the select list if the statement contains a UNION operator."_s,
                 expr.place, expr.text);
        } else {
            Scope *const outer = std::exchange(scope, first.scope.get());
            scope->clause = Clause::OrderBy;
            const Fragment value = Translate(expr);
            scope = outer;
            if (value.literal || value.sql.startsWith(u'?'))
                Fail(
                    Error::Kind::Syntax, 408,
                    u"A constant expression was encountered in the ORDER BY list, position %1."_s.arg(texts.size() + 1),
                    expr.place, expr.text);
            text = Distinct(value).sql;
        }
        texts.append(text + (item.descending ? " DESC"_L1 : ""_L1));
    }
    return " ORDER BY "_L1 + texts.join(", "_L1);
}

// A value on its way into a column.
Fragment Worker::Store(const Fragment &value, const Column &column, const QString &table, Place place)
{
    if (column.rowId && !column.identity) {
        if (value.IsNull())
            Fail(Error::Kind::NullValue, 515,
                 u"Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls."_s.arg(
                     column.name, table),
                 place, column.name);
        Fragment stored = ToInteger(value, column.type);
        if (stored.literal)
            return stored;
        return Atom(u"cx_required(%1, %2, %3)"_s.arg(stored.sql, QuoteText(column.name), QuoteText(table)),
                    column.type);
    }
    if (column.type.IsInteger() && value.type.IsUnknown())
        return value; // NULL, or a value of another tool's table: the column's check decides
    return Convert(value, column.type, Purpose::Store, place);
}

const Table &Worker::Target(const QString &name, Place place)
{
    const Table &table = ResolveTable(name, place);
    if (table.view)
        Refuse(u"A change through the view %1"_s.arg(table.name), place);
    return table;
}

const Column &Worker::TargetColumn(const Table &table, const QString &name, Place place)
{
    const Column *column = table.Find(name);
    if (!column)
        Unknown(207, u"Invalid column name '%1'."_s.arg(name), place, name);
    return *column;
}

void Worker::Insert(const InsertStatement &statement)
{
    const Table &table = Target(statement.table, statement.place);
    QList<const Column *> columns;
    for (const QString &name : statement.columns) {
        const Column &column = TargetColumn(table, name, statement.place);
        if (columns.contains(&column))
            Fail(Error::Kind::Syntax, 264,
                 u"The column name '%1' is specified more than once in the SET clause or "
                 "column list of an INSERT."_s.arg(name),
                 statement.place, name);
        columns.append(&column);
    }
    const bool defaults = statement.rows.empty() && !statement.query;
    if (columns.isEmpty() && !defaults) {
        for (const Column &column : table.columns) {
            if (!column.identity)
                columns.append(&column);
        }
    }
    for (const Column &column : table.columns) {
        const bool given = columns.contains(&column);
        if (column.identity) {
            result.identityTable = table.name;
            result.identityGiven = given;
        } else if (column.rowId && !given) {
            Fail(Error::Kind::NullValue, 515,
                 u"Cannot insert the value NULL into column '%1', table '%2'; column does not allow nulls."_s.arg(
                     column.name, table.name),
                 statement.place, column.name);
        }
    }
    QString values;
    if (defaults) {
        result.sql = u"INSERT INTO %1 DEFAULT VALUES"_s.arg(TableName(table));
        return;
    }
    if (statement.query) {
        values = TranslateQuery(*statement.query, Use::Insert, columns, table.name).sql;
    } else {
        values = "VALUES "_L1 + Rows(statement, columns, table.name);
    }
    if (columns.isEmpty()) { // every value was DEFAULT
        result.sql = u"INSERT INTO %1 DEFAULT VALUES"_s.arg(TableName(table));
        return;
    }
    QStringList names;
    for (const Column *column : std::as_const(columns))
        names.append(QuoteName(column->name));
    result.sql = u"INSERT INTO %1 (%2) %3"_s.arg(TableName(table), names.join(", "_L1), values);
}

QString Worker::Rows(const InsertStatement &statement, QList<const Column *> &columns, const QString &table)
{
    QStringList rows;
    QList<const Column *> kept = columns;
    for (const std::vector<ExprPtr> &row : statement.rows) {
        if (qsizetype(row.size()) != columns.size())
            Fail(Error::Kind::Syntax, qsizetype(row.size()) < columns.size() ? 109 : 110,
                 u"There are %1 columns in the INSERT statement than values specified in the VALUES clause."_s.arg(
                     qsizetype(row.size()) < columns.size() ? u"more"_s : u"fewer"_s),
                 statement.place);
        QStringList values;
        for (qsizetype i = 0; i < columns.size(); ++i) {
            const Expr *value = row[size_t(i)].get();
            if (value) {
                values.append(Store(Translate(*value), *columns[i], table, value->place).sql);
                continue;
            }
            if (statement.rows.size() > 1)
                Refuse(u"DEFAULT among several rows"_s, statement.place);
            kept.removeOne(columns[i]); // SQLite has no word for it: the column is left out
        }
        rows.append(u'(' + values.join(", "_L1) + u')');
    }
    columns = kept;
    return rows.join(", "_L1);
}

// The position of the table to change among the sources; it is added when FROM does not name it.
QString Worker::PrepareFrom(const QString &target, const std::vector<std::unique_ptr<TableRef>> &from,
                            const Table *&table, Place place, QString &alias)
{
    const TableRef *found = nullptr;
    for (const std::unique_ptr<TableRef> &ref : from)
        found = found ? found : FindTarget(*ref, target);
    if (!found) {
        table = &Target(target, place);
        AddSource(target, table->columns, place);
        alias = SqlAlias(target);
        return u"%1 AS %2 JOIN %3"_s.arg(TableName(*table), QuoteName(alias), FromList(from));
    }
    table = &Target(found->name, place);
    alias = SqlAlias(found->alias.isEmpty() ? found->name : found->alias);
    return FromList(from);
}

const TableRef *Worker::FindTarget(const TableRef &ref, const QString &target)
{
    if (ref.kind == TableRef::Kind::Join) {
        const TableRef *left = FindTarget(*ref.left, target);
        return left ? left : FindTarget(*ref.right, target);
    }
    const bool same = (ref.alias.isEmpty() ? ref.name : ref.alias).compare(target, Qt::CaseInsensitive) == 0 ||
                      (ref.kind == TableRef::Kind::Table && ref.name.compare(target, Qt::CaseInsensitive) == 0);
    return ref.kind == TableRef::Kind::Table && same ? &ref : nullptr;
}

Fragment Worker::AssignedValue(const Assignment &assignment, const Table &table, const Column *&column)
{
    column = &TargetColumn(table, assignment.column, assignment.place);
    if (column->identity)
        Fail(Error::Kind::Check, 8102, u"Cannot update identity column '%1'."_s.arg(column->name), assignment.place,
             column->name);
    if (!assignment.value)
        Refuse(u"DEFAULT in an UPDATE"_s, assignment.place);
    return Store(Translate(*assignment.value), *column, table.name, assignment.place);
}

void Worker::Update(const UpdateStatement &statement)
{
    Scope local;
    scope = &local;
    const Table *table = nullptr;
    QStringList assignments;
    if (statement.from.empty()) {
        table = &Target(statement.target, statement.place);
        scope->sources.append({statement.target, table->name, table->columns});
        for (const Assignment &assignment : statement.assignments) {
            const Column *column = nullptr;
            const QString value = AssignedValue(assignment, *table, column).sql;
            assignments.append(QuoteName(column->name) + " = "_L1 + value);
        }
        result.sql = u"UPDATE %1 SET %2"_s.arg(TableName(*table), assignments.join(", "_L1));
        if (statement.where)
            result.sql += " WHERE "_L1 + Translate(*statement.where).sql;
        return;
    }
    // The joined rows are worked out first, with the values; SQLite's UPDATE then finds its rows by number.
    QString alias;
    const QString from = PrepareFrom(statement.target, statement.from, table, statement.place, alias);
    QString values;
    for (const Assignment &assignment : statement.assignments) {
        const Column *column = nullptr;
        const QString value = AssignedValue(assignment, *table, column).sql;
        const QString name = u"\"#%1\""_s.arg(assignments.size() + 1);
        values += u", "_s + value + " AS "_L1 + name;
        assignments.append(QuoteName(column->name) + " = \"#u\"."_L1 + name);
    }
    const QString where = statement.where ? " WHERE "_L1 + Translate(*statement.where).sql : QString();
    result.sql = u"UPDATE %1 SET "_s.arg(TableName(*table)) + assignments.join(", "_L1) + " FROM (SELECT "_L1 +
                 QuoteName(alias) + "._rowid_ AS \"#0\""_L1 + values + " FROM "_L1 + from + where +
                 ") AS \"#u\" WHERE "_L1 + QuoteName(table->name) + "._rowid_ = \"#u\".\"#0\""_L1;
}

void Worker::Delete(const DeleteStatement &statement)
{
    Scope local;
    scope = &local;
    const Table *table = nullptr;
    if (statement.from.empty()) {
        table = &Target(statement.target, statement.place);
        scope->sources.append({statement.target, table->name, table->columns});
        result.sql = "DELETE FROM "_L1 + TableName(*table);
        if (statement.where)
            result.sql += " WHERE "_L1 + Translate(*statement.where).sql;
        return;
    }
    QString alias;
    const QString from = PrepareFrom(statement.target, statement.from, table, statement.place, alias);
    const QString where = statement.where ? " WHERE "_L1 + Translate(*statement.where).sql : QString();
    result.sql = "DELETE FROM "_L1 + TableName(*table) + " WHERE _rowid_ IN (SELECT "_L1 + QuoteName(alias) +
                 "._rowid_ FROM "_L1 + from + where + u')';
}

void Worker::Select(const SelectStatement &statement)
{
    if (!statement.assigns) {
        QueryText text = TranslateQuery(statement.query, Use::Result);
        result.sql = text.sql;
        result.columns = text.columns;
        return;
    }
    // SELECT @x = ...: the values are converted to their variables' types here.
    const SelectCore &core = statement.query.arms.front();
    QList<Column> targets;
    QList<const Column *> store;
    for (const SelectItem &item : core.items) {
        const Variable *variable = variables(item.assignedTo);
        if (!variable)
            Undeclared(item.assignedTo, item.place);
        Column column;
        column.name = item.assignedTo;
        column.type = variable->type;
        targets.append(column);
        if (!core.from.empty() && Mentions(*item.expr, core))
            Refuse(u"A variable gathered over several rows"_s, item.place);
    }
    for (const Column &column : targets)
        store.append(&column);
    QueryText text = TranslateQuery(statement.query, Use::Result, store);
    result.sql = text.sql;
    result.columns = targets;
}

// Whether an expression reads a variable that the same SELECT assigns.
bool Worker::Mentions(const Expr &expr, const SelectCore &core)
{
    if (expr.kind == Kind::Variable) {
        return std::any_of(core.items.cbegin(), core.items.cend(),
                           [&expr](const SelectItem &item) { return item.assignedTo == expr.text; });
    }
    return std::any_of(expr.args.cbegin(), expr.args.cend(),
                       [&core](const ExprPtr &arg) { return arg && Mentions(*arg, core); });
}

} // namespace embedded
