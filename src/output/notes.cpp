#include "output/notes.h"

#include "core/context.h"

#include <QUrl>

namespace {

const QString kSupportName = QStringLiteral("QUELT Instruments Support");
const QString kSupportAddress = QStringLiteral("support@quelt-instruments.example");
const QString kMailTitle = QStringLiteral("Send as e-mail");

QString encoded(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

} // namespace

bool notesTakeKey(const QString &fieldText)
{
    return fieldText.size() < kNotesLength;
}

QString notesWithinLength(const QString &fieldText)
{
    return fieldText.left(kNotesLength);
}

QString supportMailUrl(const QString &text)
{
    const QString crlf = QStringLiteral("\r\n");
    const QString body = QStringLiteral("Supportform:") + crlf + crlf + kSupportName + crlf + kSupportAddress + crlf
                         + QStringLiteral("My question:") + crlf + crlf + text;
    // Everything but letters, digits and "-._~" is encoded: a "+" or "&" in the notes stays itself.
    return QStringLiteral("mailto:") + kSupportAddress + QStringLiteral("?subject=") + encoded(QStringLiteral("Support DELFOR"))
           + QStringLiteral("&body=") + encoded(body);
}

bool sendNotesByMail(Context &ctx, const QString &text)
{
    if (text.isEmpty())
        return false;
    if (ctx.prompts.openUrl(supportMailUrl(text)))
        return true;
    ctx.prompts.messageBox(kMailTitle, QStringLiteral("No e-mail program is set up on this computer, so the mail "
                                                      "could not be opened. Set up a mail program as the desktop's "
                                                      "e-mail application and try again."));
    return false;
}
