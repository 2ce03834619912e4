// What random commands are tried with: names good and bad, and picture files of one colour each.
#pragma once

#include "ui/library_model.h"

#include <QStringList>

#include <vector>

namespace library_model {

struct GroupNameTrial {
    QString text;
    bool isValidAtTop;
    bool isValidBelow;
};

const std::vector<GroupNameTrial>& groupNameTrials();
const QStringList& pictureNameTrials();

bool isReservedName(const QString& pictureName);
bool isValidPictureName(const QString& name);

// Files of all kinds that the program decodes itself, and one by a library.
std::vector<Source> makeSources();

} // namespace library_model
