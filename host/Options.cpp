// SPDX-License-Identifier: Apache-2.0
#include "host/Options.h"

#include "host/NavigationTree.h"

#include <QRegularExpression>

#include <functional>

namespace {

// What follows one option on the command line, and what it does.
struct TOption
{
    QString name;
    QStringList values; // names of the words that belong to it
    QString help;
    std::function<void(THostOptions &, const QStringList &)> apply;
};

[[noreturn]] void Refuse(const QString &text)
{
    throw TUsageError(text);
}

qlonglong Number(const QString &text, const QString &what)
{
    bool ok = false;
    const qlonglong number = text.toLongLong(&ok, 10);
    if (!ok)
        Refuse(QStringLiteral("%1: \"%2\" is not a number.").arg(what, text));
    return number;
}

uint MessageNumber(const QString &text, const QString &what)
{
    const qlonglong number = Number(text, what);
    if (number <= 0 || number > 0xFFFF)
        Refuse(QStringLiteral("%1: %2 is not a message number.").arg(what, text));
    return uint(number);
}

TOpenRequest OpenRequest(const QString &text)
{
    const QString what = QStringLiteral("--open");
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() > 3)
        Refuse(QStringLiteral("--open takes MESSAGE[,P1[,P2]], not \"%1\".").arg(text));
    TOpenRequest request;
    request.message = MessageNumber(parts[0], what);
    request.param1 = parts.size() > 1 ? Number(parts[1], what) : 0;
    request.param2 = parts.size() > 2 ? Number(parts[2], what) : 0;
    // An address inside the program cannot come from outside it.
    if (request.param2 != 0 && SecondParameterIsList(request.message))
        Refuse(
            QStringLiteral("--open: the second parameter of message %1 is a list and must be 0 here.").arg(parts[0]));
    if (FirstParameterIsObject(request.message))
        Refuse(QStringLiteral("--open: message %1 can be sent by another screen only.").arg(parts[0]));
    return request;
}

const QList<TOption> &Options()
{
    static const QList<TOption> options = {
        {QStringLiteral("--database"),
         {QStringLiteral("FILE")},
         QStringLiteral("open this database file"),
         [](THostOptions &o, const QStringList &v) { o.database = v[0]; }},
        {QStringLiteral("--connect"),
         {QStringLiteral("ODBC-STRING")},
         QStringLiteral("connect to a server, such as \"DRIVER=FreeTDS;SERVER=...;DATABASE=...;UID=...;PWD=...\""),
         [](THostOptions &o, const QStringList &v) { o.connection = v[0]; }},
        {QStringLiteral("--new"),
         {QStringLiteral("FILE")},
         QStringLiteral("create this database file and open it"),
         [](THostOptions &o, const QStringList &v) { o.newFile = v[0]; }},
        {QStringLiteral("--demo"),
         {},
         QStringLiteral("with --new: with demonstration data"),
         [](THostOptions &o, const QStringList &) { o.demonstration = true; }},
        {QStringLiteral("--empty"),
         {},
         QStringLiteral("with --new: without demonstration data (the default)"),
         [](THostOptions &, const QStringList &) {}},
        {QStringLiteral("--country"),
         {QStringLiteral("5|6|7")},
         QStringLiteral("the country kept in the database's settings: 5 Australia, 6 New Zealand, 7 other"),
         [](THostOptions &o, const QStringList &v) {
             static const QStringList countries{QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7")};
             if (!countries.contains(v[0]))
                 Refuse(QStringLiteral("--country takes 5, 6 or 7, not \"%1\".").arg(v[0]));
             o.country = quint8(v[0].toUInt());
         }},
        {QStringLiteral("--agent"),
         {QStringLiteral("N")},
         QStringLiteral("work as the agent with this number"),
         [](THostOptions &o, const QStringList &v) { o.agent = int(Number(v[0], QStringLiteral("--agent"))); }},
        {QStringLiteral("--open"),
         {QStringLiteral("MESSAGE[,P1[,P2]]")},
         QStringLiteral("send this message after the start; may be given several times"),
         [](THostOptions &o, const QStringList &v) { o.open.append(OpenRequest(v[0])); }},
        {QStringLiteral("--tour"),
         {QStringLiteral("DIR")},
         QStringLiteral("leave a picture of every screen and its dialogs in this folder, then end"),
         [](THostOptions &o, const QStringList &v) { o.tourFolder = v[0]; }},
        {QStringLiteral("--export"),
         {QStringLiteral("MESSAGE"), QStringLiteral("FILE.csv")},
         QStringLiteral(
             "write what the list of this message shows to a CSV file, then end; may be given several times"),
         [](THostOptions &o, const QStringList &v) {
             const uint message = MessageNumber(v[0], QStringLiteral("--export"));
             if (!SecondParameterIsList(message))
                 Refuse(QStringLiteral("--export: message %1 opens no list.").arg(message));
             o.exports.append({message, v[1]});
         }},
        {QStringLiteral("--until-painted"),
         {},
         QStringLiteral("end as soon as the window is painted; for measuring the start"),
         [](THostOptions &o, const QStringList &) { o.untilPainted = true; }},
        {QStringLiteral("--scripts"),
         {QStringLiteral("DIR")},
         QStringLiteral("with --new: the folder of the database scripts, instead of those built in"),
         [](THostOptions &o, const QStringList &v) { o.scriptsFolder = v[0]; }},
        {QStringLiteral("--package-folder"),
         {QStringLiteral("DIR")},
         QStringLiteral("look for run-time packages here first"),
         [](THostOptions &o, const QStringList &v) { o.packageFolder = v[0]; }},
        {QStringLiteral("--settings"),
         {QStringLiteral("FILE")},
         QStringLiteral("keep window layouts and the like in this file (also: environment variable CORVEX_SETTINGS)"),
         [](THostOptions &o, const QStringList &v) { o.settingsFile = v[0]; }},
        {QStringLiteral("--colours"),
         {QStringLiteral("light|dark|system")},
         QStringLiteral("colours of this run"),
         [](THostOptions &o, const QStringList &v) {
             static const QStringList schemes{QStringLiteral("light"), QStringLiteral("dark"),
                                              QStringLiteral("system")};
             if (!schemes.contains(v[0]))
                 Refuse(QStringLiteral("--colours takes light, dark or system, not \"%1\".").arg(v[0]));
             o.colours = v[0];
         }},
        {QStringLiteral("--help"),
         {},
         QStringLiteral("show this list and end"),
         [](THostOptions &o, const QStringList &) { o.help = true; }},
    };
    return options;
}

} // namespace

THostOptions ParseOptions(const QStringList &arguments)
{
    static const QRegularExpression nameAndValue(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*="));
    THostOptions result;
    QStringList given;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString word = arguments[i];
        if (word == QLatin1String("-h"))
            word = QStringLiteral("--help");
        if (!word.startsWith(QLatin1String("--"))) {
            if (nameAndValue.match(word).hasMatch())
                continue;
            Refuse(QStringLiteral("\"%1\" is not understood.").arg(word));
        }
        QStringList values;
        if (const qsizetype equals = word.indexOf(QLatin1Char('=')); equals > 0) { // --name=value
            values.append(word.mid(equals + 1));
            word.truncate(equals);
        }
        const auto option =
            std::find_if(Options().cbegin(), Options().cend(), [&word](const TOption &o) { return o.name == word; });
        if (option == Options().cend())
            Refuse(QStringLiteral("There is no option %1.").arg(word));
        if (values.size() > option->values.size())
            Refuse(QStringLiteral("%1 takes no value.").arg(word));
        while (values.size() < option->values.size()) {
            // A following option is a forgotten value, not a value.
            if (i + 1 >= arguments.size() || arguments[i + 1].startsWith(QLatin1String("--")))
                Refuse(QStringLiteral("%1 needs %2.").arg(word, option->values.join(QLatin1Char(' '))));
            values.append(arguments[++i]);
        }
        if (!values.isEmpty() && values.contains(QString()))
            Refuse(QStringLiteral("%1 needs %2.").arg(word, option->values.join(QLatin1Char(' '))));
        option->apply(result, values);
        given.append(word);
    }

    const auto has = [&given](const char *name) { return given.contains(QLatin1String(name)); };
    if (has("--database") + has("--connect") + has("--new") > 1)
        Refuse(QStringLiteral("Give only one of --database, --connect and --new."));
    if (has("--demo") && has("--empty"))
        Refuse(QStringLiteral("Give only one of --demo and --empty."));
    for (const char *name : {"--demo", "--empty", "--scripts"}) {
        if (has(name) && !has("--new"))
            Refuse(QStringLiteral("%1 needs --new FILE.").arg(QLatin1String(name)));
    }
    return result;
}

QString OptionsHelp()
{
    QString text =
        QStringLiteral("Usage: corvexhost [OPTIONS] [NAME=VALUE ...]\n\n"
                       "Maintenance of a payroll's reference data. Without a database the last one used is opened, or "
                       "you are asked.\n\nOptions:\n");
    for (const TOption &option : Options()) {
        const QString left = QStringLiteral("  ") + (QStringList{option.name} + option.values).join(QLatin1Char(' '));
        text += left.size() > 29 ? left + QLatin1Char('\n') + QString(31, QLatin1Char(' ')) : left.leftJustified(31);
        text += option.help + QLatin1Char('\n');
    }
    text += QStringLiteral("\nWords of the form NAME=VALUE are kept for the screens.\n"
                           "Exit codes: 0 done, 1 failed, 2 the command line is wrong.\n");
    return text;
}

bool NeedsOffscreen(const QStringList &arguments, bool hasDisplay)
{
    const bool chosen = std::any_of(arguments.cbegin(), arguments.cend(), [](const QString &word) {
        return word == QLatin1String("-platform") || word == QLatin1String("--platform");
    });
    if (chosen || qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return false;
    // An export shows nothing even where something could be shown.
    return !hasDisplay || std::any_of(arguments.cbegin(), arguments.cend(), [](const QString &word) {
        return word == QLatin1String("--export") || word.startsWith(QLatin1String("--export="));
    });
}
