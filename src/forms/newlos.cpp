#include "forms/newlos.h"

NewCurveDialog *newlos(Context &ctx, QWidget *parent, DefinitionChanged changed)
{
    static const NewCurveForm form{
        "newlos",
        "New Loss/Gain component",
        kComponentTables,
        // The literal ends with a blank, as it always has.
        "select * from losHead where losnr > 0 order by losname ",
        "select * from loshead order by losname",
        {QStringLiteral("lostyp"), QStringLiteral("Distance"), QStringLiteral("memo")},
        &AppState::lossGainSelectionName,
        false,
    };
    return new NewCurveDialog(ctx, form, std::move(changed), parent);
}
