#pragma once
// A group of exclusive option buttons, as the program's forms use them.
#include <QButtonGroup>
#include <QLayout>
#include <QStringList>

namespace velmora::gui {

// One option button per caption, added to `into`, each named `name` + its index and carrying its
// index as its id in the group; none is on yet.
QButtonGroup* OptionButtons(const QStringList& captions, const QString& name, QWidget* owner, QLayout* into);

}  // namespace velmora::gui
