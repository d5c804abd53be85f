#include "core/settings_file.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

const QByteArray kMagic = QByteArrayLiteral("def04");
constexpr qsizetype kMagicSize = 5;
// The first 335 bytes are the original layout; the two colours of the compared trace follow, so
// that an older file keeps their defaults and an older reader passes them over.
constexpr qint64 kFileSize = 343;
constexpr int kPathSize = 200;
const QString kLoadTitle = QStringLiteral("Load default settings");
const QString kLoadText = QStringLiteral("Generate new default settings");
const QString kExitTitle = QStringLiteral("Exit Program");

QString settingsPath(const Context &ctx)
{
    return ctx.dataFolder + QStringLiteral("/setting.def");
}

// A path field. Latin-1 as it always was, and UTF-8 for a name that Latin-1 cannot hold (a
// Cyrillic home folder): bytes that are valid UTF-8 are read as such, any others as Latin-1.
// A NUL byte names no file: no path.
QString pathOfField(QByteArrayView field)
{
    while (!field.isEmpty() && field.back() == ' ')
        field.chop(1);
    if (field.contains('\0'))
        return {};
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8(field);
    return utf8.hasError() ? QString::fromLatin1(field) : text;
}

QByteArray fieldOfPath(const QString &path, int size)
{
    QByteArray bytes = path.toLatin1();
    if (pathOfField(bytes) != path) // not Latin-1, or Latin-1 that would read back as UTF-8
        bytes = path.toUtf8();
    // A path too long for its field is left out rather than cut into a different one.
    return bytes.size() <= size ? bytes.leftJustified(size, ' ') : QByteArray(size, ' ');
}

// Only a regular file (or none yet) is setting.def: a pipe or a device in its place would block
// the start or take a stream for settings.
bool isNoRegularFile(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
}

// Takes fields from the bytes behind the magic; a field that the bytes do not hold whole
// keeps its value, so a short file is taken as far as it goes.
class FieldReader {
public:
    explicit FieldReader(const QByteArray &bytes) : size_(std::min<qsizetype>(bytes.size(), qsizetype(bytes_.size())))
    {
        std::copy_n(bytes.constData(), size_, bytes_.begin());
    }

    template <typename T>
    void number(T &value)
    {
        if (holds(sizeof(T))) {
            T little;
            std::memcpy(&little, bytes_.data() + pos_, sizeof(T));
            value = qFromLittleEndian(little);
        }
        pos_ += sizeof(T);
    }
    void text(QString &value, int size)
    {
        if (holds(size))
            value = pathOfField(QByteArrayView(bytes_.data() + pos_, size));
        pos_ += size;
    }

private:
    bool holds(qsizetype size) const { return pos_ + size <= size_; }
    std::array<char, kFileSize - kMagicSize> bytes_{}; // the file behind its magic
    qsizetype size_;
    qsizetype pos_ = 0;
};

class FieldWriter {
public:
    template <typename T>
    void number(const T &value)
    {
        const T little = qToLittleEndian(value);
        bytes.append(reinterpret_cast<const char *>(&little), sizeof(T));
    }
    void text(const QString &value, int size) { bytes.append(fieldOfPath(value, size)); }

    QByteArray bytes = kMagic;
};

// The fields behind the magic, in file order; one walk serves reading and writing.
template <typename Io>
void walkFields(Io &io, AppState &s)
{
    quint8 reserved = 0; // written and read back; it has no other use
    FormGeometry &g = s.geometry;
    io.number(reserved);
    io.number(g.grafikWindowState);
    io.number(g.grafikLeft);
    io.number(g.grafikTop);
    io.number(g.grafikWidth);
    io.number(g.grafikHeight);
    io.number(g.levelmeterLeft);
    io.number(g.levelmeterTop);
    io.number(g.levelmeterWindowState);
    io.number(s.emcMode);
    io.number(s.comPort);
    io.number(s.baudRate);
    io.text(s.databasePath, kPathSize);
    for (int i = AmbientHColour; i <= CursorBColour; ++i)
        io.number(s.screenColours[i]);
    for (int i = AmbientHColour; i <= CursorBColour; ++i)
        io.number(s.printColours[i]);
    io.number(s.chart.showKnownBands);
    io.number(s.screenColours[CompareColour]);
    io.number(s.printColours[CompareColour]);
}

// What a missing or broken file leaves: colours and all other fields keep what they hold.
void takeDefaults(Context &ctx)
{
    AppState &s = ctx.state;
    FormGeometry &g = s.geometry;
    g.grafikWindowState = g.grafikLeft = g.grafikTop = 0;
    g.grafikWidth = g.grafikHeight = 7200;
    g.levelmeterLeft = 7300;
    g.levelmeterTop = 0;
    s.baudRate = 19200;
    s.comPort = 2;
    s.databasePath = ctx.dataFolder + QStringLiteral("/default.sqlite");
}

} // namespace

void readSettingsFile(Context &ctx)
{
    QFile file(settingsPath(ctx));
    // Opened for reading and writing, so a missing file is created empty and the next start
    // finds an empty file; a read-only file is still read.
    bool taken = !isNoRegularFile(file.fileName())
                 && (file.open(QIODevice::ReadWrite) || file.open(QIODevice::ReadOnly));
    if (taken) {
        const QByteArray image = file.read(kFileSize); // empty on a read error
        taken = image.startsWith(kMagic);
        if (taken) {
            FieldReader reader(image.mid(kMagicSize));
            walkFields(reader, ctx.state);
        }
    }
    if (!taken) {
        ctx.prompts.messageBox(kLoadTitle, kLoadText);
        takeDefaults(ctx);
    }
}

void writeSettingsFile(Context &ctx)
{
    if (ctx.prompts.messageBox(kExitTitle, QStringLiteral("Save default settings?"),
                               MsgButtons::YesNo)
        != MsgAnswer::Yes)
        return;
    ctx.frame().takeFormGeometry(ctx.state.geometry);
    FieldWriter writer;
    walkFields(writer, ctx.state);

    QFile file(settingsPath(ctx));
    // Written over in place, without truncating: a longer file keeps its tail, which no reader looks at.
    QString failure;
    if (isNoRegularFile(file.fileName()))
        failure = QStringLiteral("it is no regular file");
    else if (!file.open(QIODevice::ReadWrite) || file.write(writer.bytes) != writer.bytes.size() || !file.flush())
        failure = file.errorString();
    if (!failure.isEmpty())
        ctx.prompts.messageBox(kExitTitle, QStringLiteral("Cannot save ") + file.fileName() + QStringLiteral(": ")
                                               + failure);
}
