#pragma once
// The byte-level dialogue with the analyser: every character is echoed and compared before the
// next goes out; a setting ends with "RD", a query with its reply text. All routines work on
// the context's state (`lastCommand`, `lastReply`, `errorText`, ...) and its port, and return
// whether they succeeded, for the callers that stop on a failed step.

#include "core/context.h"

// Takes `comPort` and `baudRate` into the port and opens it.
bool openConfiguredPort(Context &ctx);
// Sends `lastCommand` echo-checked and requires the reply "RD": three attempts, two echo passes each.
bool sendCommand(Context &ctx);
// Sends `lastCommand` echo-checked, without waiting for a reply.
bool sendWithEcho(Context &ctx);
// `sendWithEcho`, then the reply text into `lastReply`. Nothing when offline.
bool queryUnit(Context &ctx);
// Text up to the carriage return into `lastReply`.
bool readReply(Context &ctx);
// One byte from the port as a one-character text, or as 0..255; empty text or -1 when nothing came.
QString readCharacter(Context &ctx);
int readByte(Context &ctx);
// The one failure path of the link: one "Serial - Error" box with `errorText`, then offline.
void raiseSerialError(Context &ctx);

// Store `command` in `lastCommand` and run the routine.
bool sendCommand(Context &ctx, const QString &command);
bool sendWithEcho(Context &ctx, const QString &command);
bool queryUnit(Context &ctx, const QString &command);

// The wait of the link: until `count` bytes are waiting, at most `serialTimeoutSeconds` from now.
// Blocks on the port; false when the time ran out.
bool waitForBytes(Context &ctx, int count = 1);
// Stamps the start of a wait: `commTimerStart` takes the seconds since midnight, and the result
// is the steady time that the wait is measured from.
double stampWait(Context &ctx);
// The same wait, measured from a stamp taken earlier.
bool waitForBytesSince(Context &ctx, double steadyStart, int count = 1);
// Drops what is still arriving after a failed echo or a reply that was not the one asked for (the
// rest of a stray "LO", a late reply), until the line has been quiet a moment; at most
// `serialTimeoutSeconds`. The next pass then starts on a quiet line.
void settleLine(Context &ctx);
// Line parameters for a rate: "19200,N,8,1".
QString lineSettings(qint32 baudRate);
// The numeric value of a text as the analyser writes it: a point as decimal mark, reading stops at
// the first character that cannot belong to a number; 0 when there is none.
double numberValue(const QString &text);
