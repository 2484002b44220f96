#include "Crumbit/CrumbitLineEdit.h"

#include "Util/StyleHint.h"

namespace Tavrin {
namespace Crumbit {

CrumbitLineEdit::CrumbitLineEdit(QWidget* parent)
    : QLineEdit(parent)
{
    setClearButtonEnabled(true);
    ::Util::applyStyleHint(this, QStringLiteral("normal"));
}

CrumbitLineEdit::~CrumbitLineEdit() = default;

} // namespace Crumbit
} // namespace Tavrin
