#pragma once
// "Compare with..." and "End comparison" of the Data menu: a second stored file laid over the chart.
//
// The comparison stays when another file is loaded, on every Read and across a change of mode,
// so that before and after can be flipped and a live trace held against a stored run; only
// "End comparison" removes it, and it is not kept past the end of the program.

class Context;

// Asks for a stored .emc or .mes file and compares with it. A cancel changes nothing; a refused
// file is named in a box with the reason, and the comparison there was stays.
void compareWithCommand(Context &ctx);
void endComparisonCommand(Context &ctx);
