#include "Util/Workaround.h"

#include <QWidget>

namespace Workaround {
namespace Ui {

void apply(QWidget* dialog)
{
    if (!dialog)
        return;
    if (dialog->windowFlags() & Qt::WindowContextHelpButtonHint)
        dialog->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    dialog->setAttribute(Qt::WA_StyledBackground, true);
}

} // namespace Ui
} // namespace Workaround
