// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <QSet>

namespace {

struct TRunResult
{
    int code = -1;
    QString out;
    QString err;
};

QByteArray Contents(const QString &file)
{
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

} // namespace

// The program as its user starts it, without a display.
class THostProgramTest final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void HelpListsTheOptions();
    void WrongArgumentsEndWithTwo();
    void BadDatabasesAreTold_data();
    void BadDatabasesAreTold();
    void AnExistingFileIsNotOverwritten();
    void AFailedCreationLeavesNothing();
    void AListIsExported();
    void TheCountryIsStored();
    void TheTourTakesAPictureOfEveryScreen();

private:
    TRunResult Run(const QStringList &arguments);
    QString File(const QString &name) const { return folder_.filePath(name); }

    QTemporaryDir folder_;
    QString demo_;
};

TRunResult THostProgramTest::Run(const QStringList &arguments)
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM")); // the program finds out by itself that there is no display
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("CORVEX_SETTINGS"), File(QStringLiteral("settings.ini")));
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral(QP_HOST), arguments);
    if (!host.waitForFinished(200000))
        return {};
    return {host.exitStatus() == QProcess::NormalExit ? host.exitCode() : -1,
            QString::fromUtf8(host.readAllStandardOutput()), QString::fromUtf8(host.readAllStandardError())};
}

void THostProgramTest::initTestCase()
{
    demo_ = File(QStringLiteral("demo.db"));
    const TRunResult run = Run({QStringLiteral("--new"), demo_, QStringLiteral("--demo"), QStringLiteral("--export"),
                                QStringLiteral("9225"), File(QStringLiteral("first.csv"))});
    QVERIFY2(run.code == 0, qPrintable(run.err));
    QVERIFY(QFileInfo::exists(demo_));
}

void THostProgramTest::HelpListsTheOptions()
{
    const TRunResult run = Run({QStringLiteral("--help")});
    QCOMPARE(run.code, 0);
    for (const char *option :
         {"--database FILE", "--connect ODBC-STRING", "--new FILE", "--demo", "--empty", "--country 5|6|7", "--agent N",
          "--open MESSAGE[,P1[,P2]]", "--tour DIR", "--export MESSAGE FILE.csv", "--until-painted"})
        QVERIFY2(run.out.contains(QLatin1String(option)), option);
}

void THostProgramTest::WrongArgumentsEndWithTwo()
{
    const TRunResult run = Run({QStringLiteral("--speed")});
    QCOMPARE(run.code, 2);
    QVERIFY2(run.err.contains(QStringLiteral("There is no option --speed.")), qPrintable(run.err));
    QCOMPARE(run.out, QString());
}

void THostProgramTest::BadDatabasesAreTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("missing") << "nowhere.db" << QByteArray();
    QTest::newRow("text") << "text.db" << QByteArray("Dear payroll officer,\n").repeated(400);
    QTest::newRow("truncated") << "half.db" << Contents(demo_).left(20000);
}

void THostProgramTest::BadDatabasesAreTold()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, contents);
    QFile file(File(name));
    if (!contents.isEmpty()) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(contents);
        file.close();
    }
    const TRunResult run = Run({QStringLiteral("--database"), file.fileName(), QStringLiteral("--export"),
                                QStringLiteral("9225"), File(QStringLiteral("bad.csv"))});
    QCOMPARE(run.code, 1);
    QVERIFY2(run.err.contains(name), qPrintable(run.err));
    QCOMPARE(Contents(file.fileName()), contents); // neither created nor touched
    QVERIFY(!QFileInfo::exists(File(QStringLiteral("bad.csv"))));
}

void THostProgramTest::AnExistingFileIsNotOverwritten()
{
    const QString file = File(QStringLiteral("mine.txt"));
    QFile mine(file);
    QVERIFY(mine.open(QIODevice::WriteOnly));
    mine.write("mine");
    mine.close();
    const TRunResult run = Run({QStringLiteral("--new"), file});
    QCOMPARE(run.code, 1);
    QVERIFY2(run.err.contains(QStringLiteral("will not be overwritten")), qPrintable(run.err));
    QCOMPARE(Contents(file), QByteArray("mine"));
}

void THostProgramTest::AFailedCreationLeavesNothing()
{
    // Scripts of which the last one is wrong.
    const QDir scripts(File(QStringLiteral("scripts")));
    QVERIFY(QDir().mkpath(scripts.path()));
    const auto write = [&scripts](const QString &name, const QByteArray &text) {
        QFile file(scripts.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    };
    QVERIFY(write(QStringLiteral("scripts.txt"), "schema good.sql\nreference bad.sql\n"));
    QVERIFY(write(QStringLiteral("good.sql"), "create table dbo.T (id int not null)\nGO\n"));
    QVERIFY(write(QStringLiteral("bad.sql"), "insert into dbo.Nowhere (a) values (1)\nGO\n"));
    const QStringList before = QDir(folder_.path()).entryList(QDir::Files);
    const TRunResult run = Run(
        {QStringLiteral("--new"), File(QStringLiteral("half-made.db")), QStringLiteral("--scripts"), scripts.path()});
    QCOMPARE(run.code, 1);
    QVERIFY2(run.err.contains(QStringLiteral("bad.sql")), qPrintable(run.err));
    QCOMPARE(QDir(folder_.path()).entryList(QDir::Files), before);
}

void THostProgramTest::AListIsExported()
{
    const QList<QByteArray> lines = Contents(File(QStringLiteral("first.csv"))).split('\n');
    QVERIFY2(lines.size() > 100, "the demonstration database has some hundred banks");
    QVERIFY2(lines.first().contains("BSB"), lines.first().constData());
    QCOMPARE(lines[1].count(','), lines[0].count(','));
}

void THostProgramTest::TheCountryIsStored()
{
    const QString file = File(QStringLiteral("nz.db"));
    const QString csv = File(QStringLiteral("nz.csv"));
    TRunResult run = Run({QStringLiteral("--new"), file, QStringLiteral("--country"), QStringLiteral("6"),
                          QStringLiteral("--export"), QStringLiteral("9225"), csv});
    QVERIFY2(run.code == 0, qPrintable(run.err));
    // The next run is not told the country: the heading of the bank list shows which one it is.
    run = Run({QStringLiteral("--database"), file, QStringLiteral("--export"), QStringLiteral("9225"), csv});
    QVERIFY2(run.code == 0, qPrintable(run.err));
    const QByteArray heading = Contents(csv).split('\n').first();
    QVERIFY2(heading.contains("Bank Abbrv"), heading.constData());
}

void THostProgramTest::TheTourTakesAPictureOfEveryScreen()
{
    const QDir pictures(File(QStringLiteral("tour")));
    const TRunResult run = Run({QStringLiteral("--database"), demo_, QStringLiteral("--tour"), pictures.path()});
    QVERIFY2(run.code == 0, qPrintable(run.err));
    const QStringList names = pictures.entryList({QStringLiteral("*.png")}, QDir::Files);
    for (const char *part : {"00_frmMain", "_TfrmIPBankMaintenance.png", "_TfrmIPBankMaintenance_edit.png",
                             "_TfrmIPBankMaintenance_new.png", "frmSettings", "frmActivityLog"}) {
        QVERIFY2(names.filter(QLatin1String(part)).size() == 1,
                 qPrintable(QLatin1String(part) + QLatin1String(" in ") + names.join(QLatin1Char(' '))));
    }
    for (const QString &name : names) {
        const QImage picture(pictures.filePath(name));
        QVERIFY2(!picture.isNull(), qPrintable(name));
        // A window that was never painted has one colour.
        QSet<QRgb> colours;
        for (int y = 0; y < picture.height(); y += 3) {
            for (int x = 0; x < picture.width(); x += 3)
                colours.insert(picture.pixel(x, y));
        }
        QVERIFY2(colours.size() > 8, qPrintable(name));
    }
}

QTEST_GUILESS_MAIN(THostProgramTest)
#include "t_host_program.moc"
