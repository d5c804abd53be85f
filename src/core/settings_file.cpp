#include "core/settings_file.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

const QByteArray kMagic = QByteArrayLiteral("def04");
constexpr qsizetype kMagicSize = 5;
constexpr qint64 kFileSize = 335;
constexpr int kPathSize = 200;
const QString kLoadTitle = QStringLiteral("Load default settings");
const QString kLoadText = QStringLiteral("Generate new default settings");

QString settingsPath(const Context &ctx)
{
    return ctx.dataFolder + QStringLiteral("/setting.def");
}

QString withoutTrailingBlanks(const QString &text)
{
    qsizetype size = text.size();
    while (size > 0 && text[size - 1] == QLatin1Char(' '))
        --size;
    return text.left(size);
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
            value = withoutTrailingBlanks(QString::fromLatin1(bytes_.data() + pos_, size));
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
    void text(const QString &value, int size) { bytes.append(value.toLatin1().leftJustified(size, ' ', true)); }

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
    bool taken = file.open(QIODevice::ReadWrite) || file.open(QIODevice::ReadOnly);
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
    if (ctx.prompts.messageBox(QStringLiteral("Exit Program"), QStringLiteral("Save default settings?"),
                               MsgButtons::YesNo)
        != MsgAnswer::Yes)
        return;
    ctx.frame().takeFormGeometry(ctx.state.geometry);
    FieldWriter writer;
    walkFields(writer, ctx.state);

    QFile file(settingsPath(ctx));
    // Written over in place, without truncating: a longer file keeps its tail, which no reader looks at.
    if (!file.open(QIODevice::ReadWrite)) {
        ctx.prompts.messageBox(QString(), QString());
        return;
    }
    if (file.write(writer.bytes) != writer.bytes.size() || !file.flush())
        ctx.prompts.messageBox(QString(), QString());
}
