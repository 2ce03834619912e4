// The window `frmVorhanden`: what shall become of pictures whose names are taken in the group that
// they are to go to.
#pragma once

#include "store/picture_passage.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

class QWidget;

namespace commands {

// Asks for each of the names, or once for all that are left. The answers, in the order of the
// names; nothing when the user wants none of it to happen. Without names no question.
std::optional<std::vector<store::IfNameTaken>>
askForTakenNames(std::span<const store::PictureName> names, const QString& groupName,
                 QWidget* owner);

} // namespace commands
