#include "support/no_port.h"
#include "core/clock.h"
#include "core/scripted_prompts.h"
#include "core/settings_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <sys/stat.h>

namespace {

// Forms that report the geometry they stand at, as the main frame does at the exit.
class FormsAt : public FrameControls {
public:
    void takeFormGeometry(FormGeometry &g) override
    {
        ++asked;
        g = geometry;
    }
    FormGeometry geometry;
    int asked = 0;
};

struct Fixture {
    explicit Fixture(const QString &folder)
        : prompts(new ScriptedPrompts),
          ctx(Platform{std::make_unique<VirtualClock>(), std::unique_ptr<Prompts>(prompts), std::make_unique<NoPort>()})
    {
        ctx.dataFolder = folder;
    }
    ScriptedPrompts *prompts;
    Context ctx;
};

const QString kLoadBox = QStringLiteral("Load default settings|Generate new default settings");

template <typename T>
void put(QByteArray &image, int offset, T value)
{
    qToLittleEndian(value, image.data() + offset);
}

// A 343-byte image built at the offsets of the file's layout, independent of the code under test:
// the original 335 bytes, then the compared trace's two colours at their defaults.
QByteArray handBuiltImage(const QByteArray &magic, qint16 comPort, qint32 baudRate, const QByteArray &path)
{
    QByteArray image(343, '\0');
    image.replace(0, 5, magic);
    image[5] = 0;
    put<qint16>(image, 6, 0);    // grafik window state
    put<qint16>(image, 8, 120);  // grafik left
    put<qint16>(image, 10, 240); // grafik top
    put<qint16>(image, 12, 9000);
    put<qint16>(image, 14, 6000);
    put<qint16>(image, 16, -300); // levelmeter left
    put<qint16>(image, 18, 500);
    put<qint16>(image, 20, 2); // levelmeter window state
    image[22] = 2;             // emcMode
    put<qint16>(image, 23, comPort);
    put<qint32>(image, 25, baudRate);
    image.replace(29, 200, path.leftJustified(200, ' '));
    for (int i = 0; i < 13; ++i) {
        put<quint32>(image, 229 + 4 * i, 0x010203u * (i + 1));
        put<quint32>(image, 281 + 4 * i, 0xFF0000u - quint32(i));
    }
    put<qint16>(image, 333, -1); // showKnownBands
    put<quint32>(image, 335, defaultColours()[CompareColour]);
    put<quint32>(image, 339, defaultColours()[CompareColour]);
    return image;
}

// The state that handBuiltImage describes, set the way the program would hold it.
void setStateOfImage(AppState &s, FormGeometry &formsNow, qint16 comPort, qint32 baudRate, const QString &path)
{
    formsNow = {0, 120, 240, 9000, 6000, -300, 500, 2};
    s.emcMode = 2;
    s.comPort = comPort;
    s.baudRate = baudRate;
    s.databasePath = path;
    for (int i = 0; i < 13; ++i) {
        s.screenColours[i + 1] = 0x010203u * (i + 1);
        s.printColours[i + 1] = 0xFF0000u - quint32(i);
    }
    s.chart.showKnownBands = -1;
}

QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<none>");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// What stands where setting.def is looked for.
enum class Place { Missing, File, NamedPipe, Folder };

void makePlace(Place place, const QString &path, const QByteArray &bytes)
{
    if (place == Place::File)
        writeFile(path, bytes);
    else if (place == Place::NamedPipe)
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    else if (place == Place::Folder)
        QVERIFY(QDir().mkdir(path));
}

} // namespace

class SettingsFileTest : public QObject {
    Q_OBJECT

private slots:
    void writtenFileHasTheLayoutAndReadsBack();
    void readTakesWhatTheFileHolds_data();
    void readTakesWhatTheFileHolds();
    void pathsComeBackUnchanged_data();
    void pathsComeBackUnchanged();
    void answeringNoLeavesTheFile();
    void failedWriteNamesFileAndReason_data();
    void failedWriteNamesFileAndReason();
};

void SettingsFileTest::writtenFileHasTheLayoutAndReadsBack()
{
    QTemporaryDir dir;
    const QString file = dir.filePath("setting.def");
    writeFile(file, QByteArray(400, 'x')); // a longer file keeps its tail

    Fixture out(dir.path());
    FormsAt forms;
    out.ctx.attachFrame(&forms);
    // Port 5 after a search without result is written like any other; a Latin-1 path in Latin-1.
    setStateOfImage(out.ctx.state, forms.geometry, 5, 115200, "/home/j\u00F6rg/default.sqlite");
    out.ctx.state.screenColours[CompareColour] = 0x0A0B0C;
    out.ctx.state.printColours[CompareColour] = 0x0D0E0F;
    out.prompts->answerMessage("Exit Program", MsgAnswer::Yes);
    writeSettingsFile(out.ctx);

    QCOMPARE(forms.asked, 1);
    QCOMPARE(out.prompts->messages(), QStringList{"Exit Program|Save default settings?"});
    const QByteArray expected = handBuiltImage("def04", 5, 115200, "/home/j\xF6rg/default.sqlite");
    const QByteArray written = contents(file);
    QCOMPARE(written.size(), 400);
    for (int offset = 0; offset < 335; ++offset)
        QVERIFY2(written[offset] == expected[offset], qPrintable(QString("byte %1 differs").arg(offset)));
    // The compared trace's screen and printer colours follow the original layout.
    QCOMPARE(qFromLittleEndian<quint32>(written.constData() + 335), 0x0A0B0Cu);
    QCOMPARE(qFromLittleEndian<quint32>(written.constData() + 339), 0x0D0E0Fu);
    QCOMPARE(written.mid(343), QByteArray(57, 'x'));

    Fixture in(dir.path());
    readSettingsFile(in.ctx);
    QVERIFY(in.prompts->shown.isEmpty());
    const AppState &a = in.ctx.state, &b = out.ctx.state;
    const FormGeometry &g = a.geometry;
    QCOMPARE((QList<qint16>{g.grafikWindowState, g.grafikLeft, g.grafikTop, g.grafikWidth, g.grafikHeight,
                            g.levelmeterLeft, g.levelmeterTop, g.levelmeterWindowState}),
             (QList<qint16>{0, 120, 240, 9000, 6000, -300, 500, 2}));
    QCOMPARE(a.emcMode, b.emcMode);
    QCOMPARE(a.comPort, qint16(5));
    QCOMPARE(a.baudRate, 115200);
    QCOMPARE(a.databasePath, b.databasePath);
    QVERIFY(a.screenColours == b.screenColours);
    QVERIFY(a.printColours == b.printColours);
    QCOMPARE(a.chart.showKnownBands, qint16(-1));
}

void SettingsFileTest::readTakesWhatTheFileHolds_data()
{
    QTest::addColumn<Place>("place");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("box");
    QTest::addColumn<qint16>("comPort");
    QTest::addColumn<qint32>("baudRate");
    QTest::addColumn<quint8>("emcMode");
    QTest::addColumn<QString>("databasePath"); // "*" is the default in the data folder
    QTest::addColumn<qint16>("grafikWidth");
    QTest::addColumn<quint32>("gridColour");
    QTest::addColumn<quint32>("compareColour");

    const QByteArray good = handBuiltImage("def04", 4, 38400, "/data/x.sqlite");
    const quint32 defaultGrid = defaultColours()[GridColour];
    const quint32 fileGrid = 0x010203u * GridColour;
    // The original 335 bytes leave the compared trace's colour as it was; the colours behind them are read.
    const quint32 defaultCompare = defaultColours()[CompareColour];
    QByteArray compareColours(8, '\0');
    qToLittleEndian<quint32>(0xABCDEF, compareColours.data());
    // Before each read the state holds comPort 3, baudRate 4800, emcMode 0, the path "before"
    // and grafikWidth 100, so "left as it was" shows.
    QTest::newRow("missing") << Place::Missing << QByteArray() << true << qint16(2) << 19200 << quint8(0) << "*"
                             << qint16(7200) << defaultGrid << defaultCompare;
    QTest::newRow("empty") << Place::File << QByteArray() << true << qint16(2) << 19200 << quint8(0) << "*"
                           << qint16(7200) << defaultGrid << defaultCompare;
    QTest::newRow("foreign magic") << Place::File << handBuiltImage("def03", 4, 38400, "/data/x.sqlite") << true
                                   << qint16(2) << 19200 << quint8(0) << "*" << qint16(7200) << defaultGrid << defaultCompare;
    QTest::newRow("short, ends inside baudRate") << Place::File << good.left(27) << false << qint16(4) << 4800
                                                 << quint8(2) << "before" << qint16(9000) << defaultGrid << defaultCompare;
    QTest::newRow("short, ends inside the colours") << Place::File << good.left(243) << false << qint16(4) << 38400
                                                    << quint8(2) << "/data/x.sqlite" << qint16(9000) << fileGrid << defaultCompare;
    QTest::newRow("the original 335 bytes") << Place::File << good.left(335) << false << qint16(4) << 38400 << quint8(2) << "/data/x.sqlite"
                           << qint16(9000) << fileGrid << defaultCompare;
    QTest::newRow("longer, tail ignored") << Place::File << good.left(335) + compareColours + QByteArray(1000, '\xFF') << false << qint16(4) << 38400
                                          << quint8(2) << "/data/x.sqlite" << qint16(9000) << fileGrid << 0xABCDEFu;
    // A pipe would block the start for ever; a folder cannot be read.
    QTest::newRow("named pipe") << Place::NamedPipe << QByteArray() << true << qint16(2) << 19200 << quint8(0) << "*"
                                << qint16(7200) << defaultGrid << defaultCompare;
    QTest::newRow("folder") << Place::Folder << QByteArray() << true << qint16(2) << 19200 << quint8(0) << "*"
                            << qint16(7200) << defaultGrid << defaultCompare;
}

void SettingsFileTest::readTakesWhatTheFileHolds()
{
    QFETCH(Place, place);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, box);
    QFETCH(qint16, comPort);
    QFETCH(qint32, baudRate);
    QFETCH(quint8, emcMode);
    QFETCH(QString, databasePath);
    QFETCH(qint16, grafikWidth);
    QFETCH(quint32, gridColour);
    QFETCH(quint32, compareColour);

    QTemporaryDir dir;
    const QString file = dir.filePath("setting.def");
    makePlace(place, file, bytes);
    Fixture f(dir.path());
    AppState &s = f.ctx.state;
    s.comPort = 3;
    s.baudRate = 4800;
    s.databasePath = "before";
    s.geometry.grafikWidth = 100;
    readSettingsFile(f.ctx);

    QCOMPARE(f.prompts->messages(), box ? QStringList{kLoadBox} : QStringList{});
    QCOMPARE(s.comPort, comPort);
    QCOMPARE(s.baudRate, baudRate);
    QCOMPARE(s.emcMode, emcMode);
    QCOMPARE(s.databasePath, databasePath == "*" ? dir.path() + "/default.sqlite" : databasePath);
    QCOMPARE(s.geometry.grafikWidth, grafikWidth);
    QCOMPARE(s.screenColours[GridColour], gridColour);
    QCOMPARE(s.screenColours[CompareColour], compareColour);
    // A missing file is created empty by the read, so the next start finds an empty file.
    if (place == Place::Missing || place == Place::File)
        QCOMPARE(contents(file), bytes);
}

void SettingsFileTest::answeringNoLeavesTheFile()
{
    QTemporaryDir dir;
    const QString file = dir.filePath("setting.def");
    writeFile(file, "old contents");
    Fixture f(dir.path());
    FormsAt forms;
    f.ctx.attachFrame(&forms);
    f.prompts->answerMessage("Exit Program", MsgAnswer::No);
    writeSettingsFile(f.ctx);
    QCOMPARE(contents(file), QByteArray("old contents"));
    QCOMPARE(forms.asked, 0);
}

void SettingsFileTest::failedWriteNamesFileAndReason_data()
{
    QTest::addColumn<Place>("place");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("reason");
    // Writing into a pipe would pass for a save.
    QTest::newRow("named pipe in its place") << Place::NamedPipe << "" << "it is no regular file";
    QTest::newRow("data folder gone") << Place::Missing << "/gone" << "No such file or directory";
}

void SettingsFileTest::failedWriteNamesFileAndReason()
{
    QFETCH(Place, place);
    QFETCH(QString, folder);
    QFETCH(QString, reason);
    QTemporaryDir dir;
    const QString file = dir.path() + folder + "/setting.def";
    makePlace(place, file, {});
    Fixture f(dir.path() + folder);
    f.prompts->answerMessage("Exit Program", MsgAnswer::Yes);
    writeSettingsFile(f.ctx);
    QCOMPARE(f.prompts->messages().value(1), "Exit Program|Cannot save " + file + ": " + reason);
}

void SettingsFileTest::pathsComeBackUnchanged_data()
{
    QTest::addColumn<QString>("written"); // the path the program writes; empty: the field is put in by hand
    QTest::addColumn<QByteArray>("field"); // the path's bytes in the file
    QTest::addColumn<QString>("read");
    const QString cyrillic = QString::fromUtf8("/home/\u0418\u0432\u0430\u043D/default.sqlite");
    const QString lookalike = QString::fromUtf8("/home/\u00C3\u00B6/d.sqlite"); // its Latin-1 bytes are UTF-8 for "ö"
    QTest::newRow("Cyrillic home folder")
        << cyrillic << QByteArray("/home/\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD/default.sqlite") << cyrillic;
    QTest::newRow("Latin-1 that reads as UTF-8")
        << lookalike << QByteArray("/home/\xC3\x83\xC2\xB6/d.sqlite") << lookalike;
    QTest::newRow("NUL byte: no path") << QString() << QByteArray("/data/x\0y.sqlite", 16) << QString();
    QTest::newRow("too long for the field: no path") << QString(120, QChar(0x0416)) << QByteArray() << QString();
}

void SettingsFileTest::pathsComeBackUnchanged()
{
    QFETCH(QString, written);
    QFETCH(QByteArray, field);
    QFETCH(QString, read);
    QTemporaryDir dir;
    const QString file = dir.filePath("setting.def");
    const QByteArray image = handBuiltImage("def04", 2, 19200, field);
    if (!written.isEmpty()) {
        Fixture out(dir.path());
        FormsAt forms;
        out.ctx.attachFrame(&forms);
        setStateOfImage(out.ctx.state, forms.geometry, 2, 19200, written);
        out.prompts->answerMessage("Exit Program", MsgAnswer::Yes);
        writeSettingsFile(out.ctx);
        QCOMPARE(contents(file), image);
    } else {
        writeFile(file, image);
    }
    Fixture in(dir.path());
    readSettingsFile(in.ctx);
    QCOMPARE(in.ctx.state.databasePath, read);
}

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "settings_file_test.moc"
