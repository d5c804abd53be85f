#pragma once
// What the logic changes on the page fTest of grafik (the EMC test in the editor) and on the view
// boxes of the EMC frame that applyEmcTest sets. The values are kept here so that logic and tests
// can read them back; the page overrides the setters to mirror them on screen.

#include <QString>

#include <array>

// The number fields: testText1 start, testText2 stop, testText3 reference level, testText4 limit
// distance, testText5 sweep time, steptime blocks per step, incwidth step width.
enum class TestField { Start, Stop, RefLevel, LimitDistance, SweepTime, StepBlocks, StepWidth };
inline constexpr int kTestFields = 7;
// The option arrays: detect, rbw, att, omode, oactive.
enum class TestOption { Detector, Bandwidth, Attenuator, Mode, LimitReference };
inline constexpr int kTestOptions = 5;
inline constexpr std::array<int, kTestOptions> kTestOptionCounts{2, 3, 5, 2, 2};
// The lists testDBCombo1 to testDBCombo5: test, configuration, peak limit, average limit, unit.
enum class TestList { Test, Configuration, PeakLimit, AverageLimit, Unit };
inline constexpr int kTestLists = 5;

// The controls bound to a column without logic of their own: Text1 and testCheck1 to testCheck4.
struct TestBoundValues {
    QString memo;
    bool average = false, horizontal = false, vertical = false, ambient = false;
};

class TestControls {
public:
    virtual ~TestControls() = default;

    virtual void setFieldText(TestField field, const QString &text) { fields[int(field)] = text; }
    virtual void setListText(TestList list, const QString &text) { lists[int(list)] = text; }
    // The button of `index` in an option array (always within its count).
    virtual void setOption(TestOption group, int index) { options[int(group)] = index; }
    // oactive(0) and oactive(1).
    virtual void setLimitReferenceEnabled(int index, bool on) { limitReferenceEnabled[index] = on; }
    // testText4, testText5 and testCheck4 serve only Sweep + Step.
    virtual void setSweepControlsEnabled(bool on) { sweepControlsEnabled = on; }
    virtual void setBoundValues(const TestBoundValues &values) { bound = values; }
    // emcCheck1 to emcCheck8 of the EMC frame, and emcText1.
    virtual void setEmcCheck(int number, bool on) { emcChecks[number - 1] = on; }
    virtual void setEmcText1(const QString &text) { emcText1 = text; }

    QString field(TestField f) const { return fields[int(f)]; }
    QString list(TestList l) const { return lists[int(l)]; }
    int option(TestOption group) const { return options[int(group)]; }

    std::array<QString, kTestFields> fields;
    std::array<QString, kTestLists> lists;
    std::array<int, kTestOptions> options{0, 0, 1, 0, 0};
    std::array<bool, 2> limitReferenceEnabled{true, true};
    bool sweepControlsEnabled = true;
    TestBoundValues bound;
    std::array<bool, 8> emcChecks{};
    QString emcText1;
};
