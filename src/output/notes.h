#pragma once
// The notes that go with a measurement (field `notes`): the limit of their edit field and the
// support mail that carries them.

#include <QString>

class Context;

// The edit field holds at most this many characters.
inline constexpr int kNotesLength = 800;

// Whether the field takes another typed character: not once it holds 800.
bool notesTakeKey(const QString &fieldText);
// The text as the field keeps it: anything beyond 800 characters (a paste) is cut off.
QString notesWithinLength(const QString &fieldText);

// The support mail with the text as a mailto: URL; subject and body percent-encoded.
QString supportMailUrl(const QString &text);
// Hands the support mail to the desktop's mail program, where the user checks and sends it.
// An empty text sends nothing. When no mail program takes it a box says so. True when the mail
// program has the mail.
bool sendNotesByMail(Context &ctx, const QString &text);
