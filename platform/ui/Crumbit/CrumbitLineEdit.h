#pragma once

#include <QLineEdit>

namespace Tavrin {
namespace Crumbit {

// The component library's line edit: a QLineEdit the style sheet dresses by its style
// hint ("normal", "error") and colour hint ("INPUT_LIGHT"). It adds a clear button that
// appears only while the field holds text.
class CrumbitLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit CrumbitLineEdit(QWidget* parent = nullptr);
    ~CrumbitLineEdit() override;
};

} // namespace Crumbit
} // namespace Tavrin
