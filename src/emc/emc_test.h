#pragma once
// The EMC tests: rows of table `test`, edited on the page fTest of grafik (through TestControls),
// made the program's state by applyEmcTest, added, copied and deleted by the dialogs newtest and
// deltest. Every edit writes its column at once on the current row of testData1.

#include "core/test_controls.h"
#include "store/data_view.h"

class Context;

// The page anew from the current row of testData1; nothing while there are no tests.
void showTestRecord(Context &ctx);
// The selected test (`emcTestName`, else the first) becomes the state: chain, limits, detectors,
// bandwidth, unit, levels, scan. With `testApplyView` at 1 it is cleared and the chart's window
// and trace views follow the test as well.
void applyEmcTest(Context &ctx);
// Wires applyEmcTest to the core's hook.
void attachEmcTest(Context &ctx);

// A field left by Return or by the focus: the number is clamped and written to its column.
void testFieldEntered(Context &ctx, TestField field, const QString &text);
// A button of an option array.
void testOptionChosen(Context &ctx, TestOption group, int index);
// A pick in one of the lists testDBCombo1 to testDBCombo5.
void testListPicked(Context &ctx, TestList list, const QString &text);
// testCommand1 (average limit), testCommand2 (peak limit), testCommand3 (configuration).
enum class TestClear { AverageLimit, PeakLimit, Configuration };
void testEntryCleared(Context &ctx, TestClear entry);
// Text1 and testCheck1 to testCheck4 write their columns as they change.
void testBoundChanged(Context &ctx, const TestBoundValues &values);

// The number a field's text stands for: the leading number, with `decimalChar` or a point as the
// decimal mark; 0 when the text does not start with one.
double typedValue(const QString &text, quint8 decimalChar);

// The views of the dialog newtest: Data2 the destinations, Data3 the sources, both on test.
struct NewtestViews {
    DataView data2;
    DataView data3;
};
void bindTestViews(const Context &ctx, NewtestViews &views);
// "Add New": a test of this name with the table's defaults, current in Data2; a name in use gives
// the box "Add new". showTestRecord follows either way. False when nothing was added.
bool addTest(Context &ctx, NewtestViews &views, const QString &name);
// "Copy": every column of the source (Data3) but the name and the memo into the destination (Data2).
void copyTest(Context &ctx, NewtestViews &views);
// deltest's "Delete": the current row of `data2` goes, with no question; the first row that
// remains becomes current.
void deleteTest(DataView &data2);
