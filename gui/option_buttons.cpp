#include "option_buttons.h"

#include <QRadioButton>

namespace velmora::gui {

QButtonGroup* OptionButtons(const QStringList& captions, const QString& name, QWidget* owner, QLayout* into) {
  auto* group = new QButtonGroup(owner);
  for (int i = 0; i < captions.size(); ++i) {
    auto* option = new QRadioButton(captions[i]);
    option->setObjectName(name + QString::number(i));
    group->addButton(option, i);
    into->addWidget(option);
  }
  return group;
}

}  // namespace velmora::gui
