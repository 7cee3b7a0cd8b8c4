// SPDX-License-Identifier: Apache-2.0
#include <QDate>
#include <QDateTime>
#include <QRegularExpression>

#include "framework/data/OdbcConnection.h"
#include "framework/data/SqlText.h"

namespace {

// From here on the driver sends a text as ntext, which SQL Server compares with nothing.
constexpr int kLongText = 250;
constexpr int kLongestText = 4000; // of nvarchar without max

// Statements that the server accepts only as the first and only one of a batch.
bool StandsAlone(const QString &sql)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(\A\s*(?:create|alter)\s+(?:view|proc|procedure|function|trigger|schema)\b)"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern.match(sql).hasMatch();
}

QString ServerType(const TDbArgument &argument)
{
    switch (argument.value.typeId()) {
    case QMetaType::Bool:
        return QStringLiteral("bit");
    case QMetaType::Short:
    case QMetaType::Int:
        return QStringLiteral("int");
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return QStringLiteral("bigint");
    case QMetaType::Float:
    case QMetaType::Double:
        return QStringLiteral("float");
    case QMetaType::QString:
        if (argument.value.toString().size() > kLongestText)
            throw TDbError(
                TDbError::Kind::TooLong, 8152,
                QStringLiteral("The text for @%1 is longer than %2 characters.").arg(argument.name).arg(kLongestText));
        return QStringLiteral("nvarchar(%1)").arg(kLongestText);
    case QMetaType::QDate:
    case QMetaType::QDateTime:
        return QStringLiteral("datetime");
    default:
        throw TDbError(TDbError::Kind::Statement, 0,
                       QStringLiteral("The argument @%1 has no type to be declared with.").arg(argument.name));
    }
}

} // namespace

QStringList TSqlServerDialect::SessionSettings() const
{
    return {
        // 'yyyy-mm-dd' is read as year, day, month under some log-in languages.
        QStringLiteral("set dateformat ymd"),
        // A window must not wait for another user's lock without end.
        QStringLiteral("set lock_timeout 5000"),
        // Without it over-long texts are cut in silence.
        QStringLiteral("set ansi_warnings on"),
        QStringLiteral("set ansi_nulls on"),
        QStringLiteral("set concat_null_yields_null on"),
    };
}

// As statements, since the driver's own switch begins a new transaction in silence after the server has rolled back.
QString TSqlServerDialect::BeginText() const
{
    return QStringLiteral("begin transaction");
}

QString TSqlServerDialect::CommitText() const
{
    return QStringLiteral("commit transaction");
}

QString TSqlServerDialect::RollbackText() const
{
    return QStringLiteral("if @@trancount > 0 rollback transaction");
}

QString TSqlServerDialect::OpenTransactionsText() const
{
    return QStringLiteral("select @@trancount as n");
}

QString TSqlServerDialect::Placeholder(const QVariant &value) const
{
    const bool longText = value.typeId() == QMetaType::QString && value.toString().size() > kLongText;
    return longText ? QStringLiteral("cast(? as nvarchar(max))") : QStringLiteral("?");
}

TOdbcDialect::TAsked TSqlServerDialect::RowCount(const QString &sql) const
{
    if (StandsAlone(sql))
        return {sql, QStringLiteral("select 0 as n")};
    return {QStringLiteral("set nocount on; %1\n; select @@rowcount as n").arg(sql), {}};
}

TOdbcDialect::TAsked TSqlServerDialect::NewKey(const QString &sql) const
{
    return {QStringLiteral("set nocount on; %1\n; select cast(scope_identity() as int) as id").arg(sql), {}};
}

// One batch with declared variables: through ODBC's own call syntax texts that go in and out come back damaged.
TOdbcDialect::TCallText TSqlServerDialect::Call(const QString &procedure, const QList<TDbArgument> &arguments) const
{
    if (!sqltext::IsObjectName(procedure))
        throw TDbError(TDbError::Kind::Statement, 2812,
                       QStringLiteral("\"%1\" is not a procedure's name.").arg(procedure));
    TCallText call;
    QStringList declared{QStringLiteral("@qp_return int")};
    QString sets;
    QStringList passed;
    QString selected = QStringLiteral("@qp_return as qp_return");
    for (int i = 0; i < arguments.size(); ++i) {
        const TDbArgument &argument = arguments[i];
        if (!sqltext::IsObjectName(argument.name) || argument.name.contains(u'.') || argument.name.contains(u'['))
            throw TDbError(TDbError::Kind::Statement, 102,
                           QStringLiteral("\"%1\" is not a parameter's name.").arg(argument.name));
        const QString valueName = QStringLiteral("qp_%1").arg(i);
        const QString variable = u'@' + valueName;
        call.params.insert(valueName, argument.value);
        // What stands after EXEC must be a variable or a bare placeholder.
        const bool longText =
            argument.value.typeId() == QMetaType::QString && argument.value.toString().size() > kLongText;
        if (!argument.inOut && !longText) {
            passed.append(QStringLiteral("@%1 = :%2").arg(argument.name, valueName));
            continue;
        }
        declared.append(variable + u' ' + (argument.inOut ? ServerType(argument) : QStringLiteral("nvarchar(max)")));
        sets += QStringLiteral("set %1 = :%2; ").arg(variable, valueName);
        passed.append(QStringLiteral("@%1 = %2").arg(argument.name, variable));
        if (argument.inOut) {
            passed.last() += QStringLiteral(" output");
            selected += QStringLiteral(", %1 as %2").arg(variable, valueName);
        }
    }
    call.text =
        QStringLiteral("set nocount on; declare %1; %2exec @qp_return = %3 %4; select %5")
            .arg(declared.join(QStringLiteral(", ")), sets, procedure, passed.join(QStringLiteral(", ")), selected);
    return call;
}

TDbError::Kind TSqlServerDialect::ErrorKind(int number, const QString &message) const
{
    using Kind = TDbError::Kind;
    switch (number) {
    case 2601:
    case 2627:
        return Kind::Duplicate;
    case 547: // one number for foreign keys and check constraints
        return message.contains(u"CHECK constraint", Qt::CaseInsensitive) ? Kind::Check : Kind::Referenced;
    case 2628:
    case 8152:
        return Kind::TooLong;
    case 515:
        return Kind::NullValue;
    case 220:
    case 241:
    case 242:
    case 244:
    case 245:
    case 248:
    case 8114:
    case 8115:
        return Kind::Check;
    case 1204:
    case 1205:
    case 1222:
        return Kind::Busy;
    case 3906:
    case 3908:
        return Kind::ReadOnly;
    case 1101:
    case 1105:
    case 9002:
        return Kind::DiskFull;
    case 823:
    case 824:
    case 825:
        return Kind::Damaged;
    case 50000:
        return Kind::Raised;
    case 102:
    case 105:
    case 137:
    case 156:
    case 170:
    case 195:
    case 201:
    case 207:
    case 208:
    case 2812:
    case 4121:
    case 8144:
    case 8145:
        return Kind::Statement;
    case 64: // the network's own numbers, as the drivers hand them on
    case 233:
    case 10053:
    case 10054:
    case 10060:
    case 20003:
    case 20004:
    case 20006:
    case 20009:
    case 20017:
    case 20047:
        return Kind::ConnectionLost;
    default:
        break;
    }
    // "The statement has been terminated" (3621) follows the real error, and some drivers tell only its number or none.
    static const struct
    {
        QLatin1String words;
        Kind kind;
    } kWords[] = {
        {QLatin1String("Cannot insert duplicate key"), Kind::Duplicate},
        {QLatin1String("CHECK constraint"), Kind::Check},
        {QLatin1String("FOREIGN KEY"), Kind::Referenced},
        {QLatin1String("REFERENCE constraint"), Kind::Referenced},
        {QLatin1String("would be truncated"), Kind::TooLong},
        {QLatin1String("Cannot insert the value NULL"), Kind::NullValue},
        {QLatin1String("Communication link failure"), Kind::ConnectionLost},
        {QLatin1String("DBPROCESS is dead"), Kind::ConnectionLost},
        {QLatin1String("Unable to connect"), Kind::ConnectionLost},
    };
    for (const auto &entry : kWords) {
        if (message.contains(entry.words, Qt::CaseInsensitive))
            return entry.kind;
    }
    return number > 50000 ? Kind::Raised : Kind::Other;
}
