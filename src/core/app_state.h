#pragma once
// The one record of the program. Every routine reads and writes it through the context;
// field names are the names the rest of the system uses.

#include <QDateTime>
#include <QList>
#include <QString>
#include <QtGlobal>
#include <array>
#include <vector>

inline const QString kTitle = QStringLiteral("DELFOR - V3.00");
inline const QString kOfflineSuffix = QStringLiteral("       Offline");

// Indexes 1..14 of the two colour lists; colours are 0xBBGGRR. The compared trace's colour came
// last, after the first thirteen.
enum ColourRole {
    AmbientHColour = 1, AmbientVColour, GridColour, DecadeColour, LimitColour, LossGainColour,
    SampleColour, MaxholdColour, AverageColour, MemoryColour, QPeakColour, CursorAColour, CursorBColour,
    CompareColour
};
using ColourList = std::array<quint32, 15>; // index 0 unused

ColourList defaultColours();

// Mirrors the analyser's front panel.
struct AnalyserSettings {
    float refLevel = -30.0f;
    float centerFrequency = 500.0f;
    float attenuator = 10.0f;
    quint8 dbPerDivision = 10;
    float unitOffset = 0.0f;
    quint8 unitSelection = 1;
    qint16 span = 1000;
    quint16 bandwidth = 1000;
    quint8 videoFilter = 0;
    QString unitName10 = QStringLiteral("dBmW");
    QString userName9 = QStringLiteral("User");
    quint8 readMode = 0;
    quint8 memoryReadMode = 0;
    quint8 settingsMemory = 1;
    float tgLevel = -50.0f;
    quint8 tgOn = 0;
    quint8 calculationOn = 0;
};

constexpr int kTraceSize = 2049; // indexes 0..2048; 1..pointCount carry data
using TraceArray = std::array<qint16, kTraceSize>;

struct TraceStore {
    TraceArray rawSamples{};
    TraceArray sampleTrace{};
    TraceArray averageTrace{};
    TraceArray maxholdTrace{};
    TraceArray memoryTrace{};
    QDateTime sampleTime, averageTime, maxholdTime, memoryTime;
};

// One point of a second stored file laid over the first ("Compare with..."): MHz and dBm.
struct ComparisonPoint {
    float frequency;
    float level;
};

// The chart's window and view switches.
struct ChartView {
    float startFrequency = 0.0f;
    float stopFrequency = 1000.0f;
    qint16 grafikMin = 1000; // the crossed pair: nothing read yet
    qint16 grafikMax = -1000;
    bool zoomOn = false;
    float zoomStart = 10.0f;
    float zoomSpan = 10.0f;
    quint8 logAxis = 0;
    qint16 showKnownBands = 0; // 0 or -1
    quint8 paintBusy = 0;
    float logStart = 0.0f; // ends of the logarithmic axis and the decade of its start, MHz
    float logStop = 0.0f;
    float logDecade = 0.001f;
    quint8 paintSelection = 0; // 0 "Hor/L+Ver/N", 1 "Hor/L", 2 "Ver/N"
    quint8 paintAllPoints = 0;
    quint8 thinFactor = 20;
    float peakFrequency = 0.0f;
    qint16 peakLevel = -1000;
    qint32 cursorAX = 100000; // cursors in canvas units: x 0..1000000, y in level counts
    qint32 cursorBX = 200000;
    qint32 cursorAY = 0;
    qint32 cursorBY = 0;
    qint32 cursorAOldX = 0, cursorAOldY = 0, cursorBOldX = 0, cursorBOldY = 0; // where each was last drawn
    quint8 cursorFresh = 1;    // 1 after a paint cleared Picture1: nothing to erase
    quint8 cursorGrabbed = 0;  // 0 none, 1 A, 2 B while the left button is held
    quint8 cursorsActive = 1;  // 1 when the mouse may move the cursors
    float cursorAFrequency = 0.0f; // the last readout of A: MHz, and the level in the shown unit
    float cursorALevel = 0.0f;
    QString savedCaption;      // the form's caption while a band name stands in its place
    // The file compared with the one shown, and its trace in frequency order; empty: none.
    QString comparePath;
    std::vector<ComparisonPoint> compareTrace;
};

// Window geometry kept in setting.def, in twips.
struct FormGeometry {
    qint16 grafikWindowState = 0;
    qint16 grafikLeft = 0;
    qint16 grafikTop = 0;
    qint16 grafikWidth = 7200;
    qint16 grafikHeight = 7200;
    qint16 levelmeterLeft = 7300;
    qint16 levelmeterTop = 0;
    qint16 levelmeterWindowState = 0;
};

// One point of a loss/gain component: what must be added to a reading at that frequency.
struct ComponentRow {
    float frequency; // MHz
    float levelDbmw; // dB
};

// The stretch of a component's table that the last lookup of its slot fell into.
// highFrequency = 0 empties it.
struct ComponentSegment {
    float lowFrequency = 0.0f;
    float highFrequency = 0.0f;
    float lowLevel = 0.0f;
    float highLevel = 0.0f;
};

constexpr int kChainSlots = 5;

struct AppState {
    AnalyserSettings analyser;
    TraceStore traces;
    ChartView chart;
    FormGeometry geometry;

    // Link state
    qint16 online = 0;
    qint16 autoReadOn = 0;
    quint8 autoReading = 0;
    quint8 serialError = 0;
    quint8 busy = 0;
    quint8 autosearchActive = 0;
    quint8 unitFound = 0;
    qint16 comPort = 2;
    // The port of setting.def while a start on the simulator (port 0) stands in its place; -1 otherwise.
    qint16 configuredComPort = -1;
    qint32 baudRate = 19200;
    quint8 serialTimeoutSeconds = 4;
    quint8 transmissionMonitorOn = 0;
    qint16 noiseValue = 50;
    quint8 debugClickCount = 0;
    float maxCenterFrequency = 1050.0f;
    qint16 hasTrackingGenerator = 0;
    quint8 uncalibratedFlag = 0;
    QString errorText;
    QString unitModel;
    QString firmwareVersion;
    QString lastCommand;
    QString lastReply;
    quint8 sendAttempt = 0;
    quint8 echoAttempt = 0;
    float commTimerStart = 0.0f;

    // Traces
    qint32 pointCount = 2001;
    quint8 repaintRequest = 0;
    quint8 traceTarget = 0;
    quint8 correctionOn = 0;
    quint8 traceFrozen = 0;
    quint8 viewMemoryB = 1, viewSample = 1, viewAverage = 1, viewQPeak = 1;
    quint8 viewMaxhold = 0, viewMemoryAB = 0;
    quint8 viewLimitAverage = 0, viewLimitMax = 0;
    QString unitName = QStringLiteral("dBmW");
    QString configName = QStringLiteral("Not set");
    QString emcTestName;
    QString notes = QStringLiteral(" ");
    QDateTime measurementDate; // of the stored measurement on display

    // Limits in force (names "Not set" when none is)
    qint32 averageLimitNr = 0, maxholdLimitNr = 0;
    QString averageLimitName = QStringLiteral("Not set");
    QString maxholdLimitName = QStringLiteral("Not set");
    qint16 averageLimitLog = 0, maxholdLimitLog = 0; // -1: logarithmic interpolation
    float averageLimitDistance = 0.0f; // metres

    // Equipment editors: the bounds of the limit and loss/gain previews, the unit offset of the
    // limit in the editor (truncated), the sign of the component kind (1 antenna and loss, -1 gain),
    // and the destinations last shown in the dialogs newlim, newlos and newconf.
    qint16 limitUnitOffset = 0;
    float limitPreviewMinLevel = 0.0f, limitPreviewMaxLevel = 0.0f;
    float limitPreviewMinFrequency = 0.0f, limitPreviewMaxFrequency = 0.0f;
    QString limitSelectionName;
    float lossGainPreviewMinLevel = 0.0f, lossGainPreviewMaxLevel = 0.0f;
    float lossGainPreviewMinFrequency = 0.0f, lossGainPreviewMaxFrequency = 0.0f;
    qint16 lossGainSign = 1;
    QString lossGainSelectionName;
    QString configSelectionName;

    // Correction chain: up to five components of the workplace configuration, and the distance term.
    std::array<qint32, kChainSlots> componentNumber{}; // losnr per slot; a slot is used from 1 up
    std::array<QList<ComponentRow>, kChainSlots> componentRows; // each slot's rows in frequency order
    std::array<ComponentSegment, kChainSlots> componentSegment{};
    float correctionAtFrequency = 0.0f; // dB, the last lookup without the distance term
    float distanceFromDut = 0.0f;       // metres; the measuring distance
    float maxholdLimitDistance = 0.0f;  // metres; the distance for which the peak limit holds

    // Modes and runs
    quint8 emcMode = 0;
    quint8 emcScanMode = 0;
    quint8 emcViewMaxhold = 0, emcViewQPeak = 0, emcViewAverage = 0;
    quint8 ambientOn = 0;
    quint8 emcViewAmbient = 0, emcViewAmbientH = 1, emcViewAmbientV = 0, emcCalcAmbient = 1;
    qint16 emcAmbientDistance = 0; // dB
    qint16 emcRunActive = 0;
    quint8 emcStopRequest = 0;
    qint16 modeSwitchSettingsPrompt = 0;

    // The EMC test in force, taken from its row by applyEmcTest.
    quint8 testApplyView = 0;     // 1: the next applyEmcTest also resets the chart's window and views
    float stepWidth = 0.12f;      // MHz
    quint8 stepBlocks = 1;        // blocks measured at each step
    qint16 sweepTime = 10;        // seconds of one sweep in Sweep + Step
    quint8 limitReference = 0;    // 0 the peak limit, 1 the average limit
    float limitDistance = -6.0f;  // dB
    qint16 testHorizontal = -1, testVertical = 0; // -1: the round is run
    // The page fTest's working copies: the test's reference level, its unit's offset, its attenuator.
    float testRefLevel = -30.0f, testUnitOffset = 0.0f, testAttenuator = 10.0f;
    qint32 timer3Ticks = 0;

    quint8 decimalChar = 46;
    quint16 tauf30 = 2, tauf1000 = 2, tent30 = 320, tent1000 = 1100;
    double qpeakValue = 0.0;      // the quasi-peak detector's state, linear amplitude
    qint16 horizontalRound = 0;   // -1 in the horizontal / L round, 0 in the vertical / N one
    // The run: whether the rows of the file exist yet, the ambient round (0 DUT on, 1 ambient
    // H / L, 2 ambient V / N).
    quint8 rowsExist = 0;
    quint8 ambientRound = 0;
    // The stepped scan: the frequency last commanded, the blocks still to start there, the blocks
    // since the progress caption, and the times of that caption and of the round's start.
    double stepFrequency = 0.0, stepIncrement = 0.0;
    quint8 stepBlocksLeft = 0;
    qint16 stepCounter = 0;
    QDateTime progressMark, emcStartTime;
    // Sweep + Step: the test's range while the chart's window follows the segments, the upper end
    // of the last merged segment, the next frequency that gets a row, and the first point of the
    // limit line in force (100000 once it has its row).
    float testStart = 0.0f, testStop = 0.0f;
    float storedUpTo = 0.0f, nextStoreFrequency = 0.0f;
    float limitStartFrequency = 100000.0f;
    float databaseVersion = 1.0f;
    QString databasePath;
    QString measurementFileName;

    float triggerLevel = -30.0f;
    quint8 triggerOn = 0;
    quint8 printAfterTrigger = 0;

    qint32 autostoreInterval = 60;
    QString autostoreFile;
    quint8 autostoreOn = 0;
    quint8 autostorePrint = 0;
    qint32 autostoreCounter = 0;
    QDateTime autostoreNextTime;

    QString headline = QStringLiteral("QUELT Instruments");
    QString printerName; // chosen in the printer setup for this run; empty: the system's default printer

    // The report, as the print dialog sets it.
    quint8 printVertical = 1;  // 1 portrait, 0 landscape
    quint8 printCursor = 1;    // the cursors and their readouts on the page
    quint8 printInColour = 1;  // 1 the printer colours, 0 everything black
    quint8 printNotes = 0;     // the notes under the chart, or on a page of their own in landscape
    quint8 printDate = 1;      // "Print date: " in the header
    quint8 printBusy = 0;      // 1 while a page is drawn
    quint8 limitNamePending = 0; // 1 until the first segment of a limit line has printed its name
    quint8 previewOpen = 0;    // 1 while the preview form stands open

    ColourList screenColours = defaultColours();
    ColourList printColours = defaultColours();
};

// Text fields use the locale's decimal character: 44 where a number formats with a comma, else 46.
quint8 localeDecimalChar();
