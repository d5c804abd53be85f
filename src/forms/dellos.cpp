#include "forms/dellos.h"

DeleteCurveDialog *dellos(Context &ctx, QWidget *parent, DefinitionChanged changed)
{
    static const DeleteCurveForm form{"dellos", "Delete Loss/Gain component", kComponentTables,
                                      "select * from losHead where losnr > 0 order by losname",
                                      "Delete the selected Loss/Gain component"};
    return new DeleteCurveDialog(ctx, form, std::move(changed), parent);
}
