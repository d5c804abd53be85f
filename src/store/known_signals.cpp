#include "store/known_signals.h"

#include "core/context.h"
#include "store/catalogue_refresh.h"
#include "store/catalogue_views.h"

namespace {

// Text3(0..5) in box order.
const char *const kColumns[] = {"signal", "startfreq", "stopfreq", "max-level", "min-level", "memo"};
// Once the name box holds this many characters, a further key loses the decimal character.
constexpr int kNameKeyLimit = 50;

DataView &known(Context &ctx) { return catalogueViews(ctx).known; }

QString column(int box) { return QLatin1String(kColumns[box]); }

bool isLevelBox(int box) { return box == MaxLevelBox || box == MinLevelBox; }

// A stored number as a box shows it as it stands; nothing for a column not yet filled.
QString storedText(const AppState &s, const QVariant &value, double offset = 0.0)
{
    if (value.isNull() || !value.isValid())
        return {};
    return plainFieldNumber(float(value.toDouble() + offset), s.decimalChar);
}

// A number box after its commit: the stored value in the box's picture.
QString committedText(const AppState &s, int box, const QVariant &value)
{
    if (value.isNull() || !value.isValid())
        return {};
    if (isLevelBox(box))
        return fieldNumber(value.toDouble() + s.analyser.unitOffset, 1, s.decimalChar);
    return fieldNumber(value.toDouble(), 3, s.decimalChar);
}

void writeColumn(DataView &view, const QString &name, const QVariant &value)
{
    if (view.edit()) {
        view.setValue(name, value);
        view.update();
    }
}

} // namespace

KnownSignalEditor reloadKnownSignalEditor(Context &ctx)
{
    const AppState &s = ctx.state;
    const DataView &view = known(ctx);
    KnownSignalEditor shown;
    shown.unitName = s.unitName;
    for (int box : {SignalBox, MemoBox})
        shown.texts[box] = view.value(column(box)).toString();
    for (int box : {StartBox, StopBox})
        shown.texts[box] = storedText(s, view.value(column(box)));
    for (int box : {MaxLevelBox, MinLevelBox})
        shown.texts[box] = storedText(s, view.value(column(box)), s.analyser.unitOffset);
    shown.horizontal = view.value(QStringLiteral("hor")).toInt() != 0;
    shown.vertical = view.value(QStringLiteral("ver")).toInt() != 0;
    shown.colour = view.value(QStringLiteral("screenColor")).toUInt();
    return shown;
}

std::optional<QChar> knownSignalKey(const Context &ctx, QChar key)
{
    if (key != QLatin1Char(',') && key != QLatin1Char('.'))
        return key;
    if (ctx.state.decimalChar == 0)
        return std::nullopt;
    return QChar(ctx.state.decimalChar);
}

bool knownSignalNameKey(Context &ctx, const QString &text)
{
    if (text.size() < kNameKeyLimit)
        return false;
    // Kept as it always was: a long name costs every number box its decimal character.
    ctx.state.decimalChar = 0;
    return true;
}

QString commitKnownSignalText(Context &ctx, int box, const QString &text)
{
    const AppState &s = ctx.state;
    DataView &view = known(ctx);
    if (box < SignalBox || box > MemoBox)
        return text;
    if (box == SignalBox || box == MemoBox) {
        writeColumn(view, column(box), text);
        return text;
    }
    double value = 0.0;
    if (typedNumber(text, s.decimalChar, value))
        writeColumn(view, column(box), isLevelBox(box) ? value - s.analyser.unitOffset : value);
    return committedText(s, box, view.value(column(box)));
}

void knownSignalChecked(Context &ctx, bool vertical, bool ticked)
{
    writeColumn(known(ctx), vertical ? QStringLiteral("ver") : QStringLiteral("hor"), ticked ? -1 : 0);
}

void newKnownSignal(Context &ctx)
{
    DataView &view = known(ctx);
    if (view.addNew())
        view.update();
    view.refresh();
}

void deleteKnownSignal(Context &ctx)
{
    DataView &view = known(ctx);
    if (view.hasCurrent())
        view.deleteRow();
    view.refresh();
    if (!view.hasCurrent())
        view.moveFirst();
}

void sortKnownSignals(Context &ctx, bool byFrequency)
{
    DataView &view = known(ctx);
    view.setSource(byFrequency ? QStringLiteral("select * from knownsignals order by startfreq")
                               : QStringLiteral("select * from knownsignals order by signal"));
    view.refresh();
}

bool changeKnownSignalColour(Context &ctx)
{
    DataView &view = known(ctx);
    const std::optional<quint32> colour = ctx.prompts.colourDialog(view.value(QStringLiteral("screenColor")).toUInt());
    if (!colour)
        return false;
    writeColumn(view, QStringLiteral("screenColor"), qint64(*colour));
    return true;
}
