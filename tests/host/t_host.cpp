// SPDX-License-Identifier: Apache-2.0
#include <QTest>

#include "framework/Kvglobal.h"
#include "host/DatabaseSetup.h"
#include "host/NavigationTree.h"
#include "host/Options.h"
#include "host/SettingsDlg.h"

namespace {

constexpr TObjectKinds kFolder = ObjectKind(6) | ObjectKind(8);
constexpr TObjectKinds kList = ObjectKind(0) | ObjectKind(6);

const TClassRef kManager{"TfrmMaintGroupManager", nullptr};
const TClassRef kBanks{"TfrmIPBankMaintenance", nullptr};
const TClassRef kEft{"TfrmIPEFTMaintenance", nullptr};
const TClassRef kRates{"TfrmIPRateTypeMaintenance", nullptr};
const TClassRef kTaxAU{"TfrmIPTaxParametersDlg", nullptr};
const TClassRef kTaxNZ{"TfrmIPTaxParametersNZDlg", nullptr};
const TClassRef kTaxOther{"TfrmIPTaxParametersOtherDlg", nullptr};
const TClassRef kWizard{"TfrmEmpTrfWiz", nullptr};

TObjectEntry Folder(const char *key)
{
    return {{}, QStringLiteral("f"), &kManager, QLatin1String(key), kFolder, QStringLiteral("Group Manager"), 0, 0};
}

TObjectEntry Screen(const TClassRef &screen, const char *key, const char *caption)
{
    return {{}, QLatin1String(screen.name), &screen, QLatin1String(key), kList, QLatin1String(caption), 0, 0};
}

// "Folder{Screen:message, …}"; a screen that cannot be opened ends with "!".
QString Drawn(const QList<TNavigationNode> &nodes)
{
    QStringList parts;
    for (const TNavigationNode &node : nodes) {
        QString part = node.caption;
        if (node.folder)
            part += QLatin1Char('{') + Drawn(node.children) + QLatin1Char('}');
        else
            part += QStringLiteral(":%1%2").arg(node.message).arg(QLatin1String(node.available ? "" : "!"));
        parts.append(part);
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace

class THostTest final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void NavigationFollowsTheKeys_data();
    void NavigationFollowsTheKeys();
    void OptionsAreRead();
    void WrongOptionsAreRefused_data();
    void WrongOptionsAreRefused();
    void OffscreenIsChosen_data();
    void OffscreenIsChosen();
    void SettingsAreChecked_data();
    void SettingsAreChecked();
    void PasswordsAreNotKept_data();
    void PasswordsAreNotKept();
};

void THostTest::NavigationFollowsTheKeys_data()
{
    QTest::addColumn<QList<TObjectEntry>>("entries");
    QTest::addColumn<int>("country");
    QTest::addColumn<QString>("drawn");

    const TObjectEntry top = Folder("MAINT");
    const TObjectEntry general = Folder("MAINT_GENERAL");
    const TObjectEntry bankFolder = Folder("MAINT_GENERAL_BANKS");
    const TObjectEntry banks = Screen(kBanks, "MAINT_GENERAL_BANKS", "Bank Maintenance");
    const TObjectEntry eft = Screen(kEft, "MAINT_GENERAL_EFT", "EFT Parameters");
    const QList<TObjectEntry> taxes{top, Folder("MAINT_TAX"), Screen(kTaxAU, "MAINT_TAX_TAXPARAMETERS", "AU"),
                                    Screen(kTaxNZ, "MAINT_TAX_TAXPARAMETERS", "NZ"),
                                    Screen(kTaxOther, "MAINT_TAX_TAXPARAMETERS", "Other")};
    TObjectEntry hidden = banks;
    hidden.ObjectKinds = ObjectKind(3);

    QTest::newRow("own folder, or the nearest above; folders first")
        << QList<TObjectEntry>{top, general, eft, bankFolder, banks} << 5
        << "Maintenance{General{Banks{Bank Maintenance:9225}, EFT Parameters:9240!}}";
    QTest::newRow("a screen registered before its folder") << QList<TObjectEntry>{banks, bankFolder, general, top} << 5
                                                           << "Maintenance{General{Banks{Bank Maintenance:9225}}}";
    QTest::newRow("a key is a prefix by whole words only")
        << QList<TObjectEntry>{top, Folder("MAINT_LEAVE"), Screen(kBanks, "MAINT_LEAVEPLAN", "B")} << 5
        << "Maintenance{Leave{}, B:9225}";
    QTest::newRow("the non-visible entry") << QList<TObjectEntry>{top, hidden} << 5 << "Maintenance{}";
    QTest::newRow("a group without a folder; a class without a message")
        << QList<TObjectEntry>{top, Screen(kWizard, "ALERT", "Employee Transfer")} << 5
        << "Maintenance{}, Alerts{Employee Transfer:0!}";
    QTest::newRow("one caption twice")
        << QList<TObjectEntry>{top, Folder("MAINT_RATES"), Screen(kRates, "MAINT_RATES_AWARD", "Rate Type Maintenance"),
                               Screen(kRates, "MAINT_RATES_LEAVE", "Rate Type Maintenance")}
        << 5
        << "Maintenance{Rates{Rate Type Maintenance (Award):9409!, "
           "Rate Type Maintenance (Leave):9409!}}";
    QTest::newRow("tax parameters, Australia") << taxes << 5 << "Maintenance{Tax{AU:9255!}}";
    QTest::newRow("tax parameters, New Zealand") << taxes << 6 << "Maintenance{Tax{NZ:9255!}}";
    QTest::newRow("tax parameters, other") << taxes << 7 << "Maintenance{Tax{Other:9255!}}";
    QTest::newRow("tax parameters, unknown country") << taxes << 3 << "Maintenance{Tax{}}";
}

void THostTest::NavigationFollowsTheKeys()
{
    QFETCH(QList<TObjectEntry>, entries);
    QFETCH(int, country);
    QFETCH(QString, drawn);
    const auto onlyBanks = [](uint message) { return message == 9225; };
    QCOMPARE(Drawn(BuildNavigation(entries, quint8(country), onlyBanks)), drawn);
}

void THostTest::OptionsAreRead()
{
    const THostOptions options = ParseOptions(
        {QStringLiteral("--new"), QStringLiteral("a b.db"), QStringLiteral("MAPS=Y"), QStringLiteral("--demo"),
         QStringLiteral("--country=6"), QStringLiteral("--agent"), QStringLiteral("3"), QStringLiteral("--open"),
         QStringLiteral("9225"), QStringLiteral("--open"), QStringLiteral("9226,-5,1"), QStringLiteral("--export"),
         QStringLiteral("9243"), QStringLiteral("scales.csv")});
    QCOMPARE(options.newFile, QStringLiteral("a b.db"));
    QVERIFY(options.demonstration);
    QCOMPARE(options.country.value(), quint8(6));
    QCOMPARE(options.agent.value(), 3);
    QCOMPARE(options.open.size(), 2);
    QCOMPARE(options.open[0].param1, 0);
    QCOMPARE(options.open[1].message, 9226u);
    QCOMPARE(options.open[1].param1, -5);
    QCOMPARE(options.open[1].param2, 1);
    QCOMPARE(options.exports.size(), 1);
    QCOMPARE(options.exports[0].message, 9243u);
    QCOMPARE(options.exports[0].file, QStringLiteral("scales.csv"));
    QVERIFY(options.IsBatch());
}

void THostTest::WrongOptionsAreRefused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("says");
    QTest::newRow("unknown") << "--speed"
                             << "There is no option --speed.";
    QTest::newRow("bare word") << "bank.db"
                               << "\"bank.db\" is not understood.";
    QTest::newRow("no value") << "--database"
                              << "--database needs FILE.";
    QTest::newRow("an option instead of a value") << "--database --new x"
                                                  << "--database needs FILE.";
    QTest::newRow("empty value") << "--database="
                                 << "--database needs FILE.";
    QTest::newRow("value too many") << "--new x --demo=yes"
                                    << "--demo takes no value.";
    QTest::newRow("half an export") << "--export 9225"
                                    << "--export needs MESSAGE FILE.csv.";
    QTest::newRow("export of a dialog") << "--export 9226 x.csv"
                                        << "message 9226 opens no list";
    QTest::newRow("country") << "--country 8"
                             << "--country takes 5, 6 or 7";
    QTest::newRow("agent") << "--agent Ann"
                           << "\"Ann\" is not a number";
    QTest::newRow("message") << "--open banks"
                             << "\"banks\" is not a number";
    QTest::newRow("parameters") << "--open 9225,1,2,3"
                                << "--open takes MESSAGE[,P1[,P2]]";
    QTest::newRow("a list's address") << "--open 9225,0,77"
                                      << "must be 0";
    QTest::newRow("an object's address") << "--open 9437,77"
                                         << "another screen only";
    QTest::newRow("two databases") << "--database a --connect b"
                                   << "only one of --database, --connect and --new";
    QTest::newRow("both kinds") << "--new a --demo --empty"
                                << "only one of --demo and --empty";
    QTest::newRow("demo of nothing") << "--database a --demo"
                                     << "--demo needs --new FILE.";
}

void THostTest::WrongOptionsAreRefused()
{
    QFETCH(QString, line);
    QFETCH(QString, says);
    try {
        ParseOptions(line.split(QLatin1Char(' ')));
        QFAIL("accepted");
    } catch (const TUsageError &error) {
        QVERIFY2(QString::fromUtf8(error.what()).contains(says), error.what());
    }
}

void THostTest::OffscreenIsChosen_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("platform");
    QTest::addColumn<bool>("display");
    QTest::addColumn<bool>("offscreen");
    QTest::newRow("display") << "--database a" << QByteArray() << true << false;
    QTest::newRow("no display") << "--database a" << QByteArray() << false << true;
    QTest::newRow("export shows nothing") << "--export 9225 a" << QByteArray() << true << true;
    QTest::newRow("chosen by the environment") << "--export 9225 a" << QByteArray("xcb") << true << false;
    QTest::newRow("chosen on the command line") << "-platform vnc" << QByteArray() << false << false;
}

void THostTest::OffscreenIsChosen()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, platform);
    QFETCH(bool, display);
    const QByteArray before = qgetenv("QT_QPA_PLATFORM");
    platform.isNull() ? qunsetenv("QT_QPA_PLATFORM") : qputenv("QT_QPA_PLATFORM", platform);
    const bool offscreen = NeedsOffscreen(line.split(QLatin1Char(' ')), display);
    qputenv("QT_QPA_PLATFORM", before);
    QTEST(offscreen, "offscreen");
}

void THostTest::SettingsAreChecked_data()
{
    QTest::addColumn<int>("country");
    QTest::addColumn<int>("year");
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<TSettingsField>("wrong");
    QTest::newRow("good") << 5 << 2027 << "000-000" << 4 << TSettingsField::None;
    QTest::newRow("least") << 6 << 1990 << "9" << 2 << TSettingsField::None;
    QTest::newRow("most") << 7 << 2100 << "00 0000-0" << 6 << TSettingsField::None;
    QTest::newRow("country") << 3 << 1989 << "" << 1 << TSettingsField::Country;
    QTest::newRow("early year") << 5 << 1989 << "" << 1 << TSettingsField::EndTaxYear;
    QTest::newRow("late year") << 5 << 2101 << "000" << 4 << TSettingsField::EndTaxYear;
    QTest::newRow("no format") << 5 << 2027 << "  " << 1 << TSettingsField::BSBFormat;
    QTest::newRow("letters") << 5 << 2027 << "LLL-000" << 4 << TSettingsField::BSBFormat;
    QTest::newRow("no digit") << 5 << 2027 << " - " << 4 << TSettingsField::BSBFormat;
    QTest::newRow("few decimals") << 5 << 2027 << "000-000" << 1 << TSettingsField::RateDecimals;
    QTest::newRow("many decimals") << 5 << 2027 << "000-000" << 7 << TSettingsField::RateDecimals;
}

void THostTest::SettingsAreChecked()
{
    QFETCH(int, country);
    QFETCH(int, year);
    QFETCH(QString, format);
    QFETCH(int, decimals);
    QFETCH(TSettingsField, wrong);
    TInstallationSettings settings;
    settings.country = country;
    settings.endTaxYear = year;
    settings.bsbFormat = format;
    settings.rateDecimals = decimals;
    TSettingsField field = TSettingsField::None;
    const QString text = CheckSettings(settings, field);
    QCOMPARE(field, wrong);
    QCOMPARE(text.isEmpty(), wrong == TSettingsField::None);
}

void THostTest::PasswordsAreNotKept_data()
{
    QTest::addColumn<QString>("connection");
    QTest::addColumn<QString>("kept");
    QTest::newRow("in the middle") << "DRIVER=x;PWD=se cret;DATABASE=y"
                                   << "DRIVER=x;DATABASE=y";
    QTest::newRow("at the end, other case") << "UID=sa;pwd=secret"
                                            << "UID=sa;";
    QTest::newRow("in braces") << "Password={a;b}}c};UID=sa"
                               << "UID=sa";
    QTest::newRow("none") << "DSN=payroll"
                          << "DSN=payroll";
}

void THostTest::PasswordsAreNotKept()
{
    QFETCH(QString, connection);
    QTEST(WithoutPassword(connection), "kept");
}

QTEST_MAIN(THostTest)
#include "t_host.moc"
