#pragma once

#include <QString>

#include <vector>

namespace Timeline {

// What pasting copied effects onto clips achieved. Some effects cannot be carried over
// as they are (a tool bound to a region of the source clip, a mask drawn on its frame):
// they are pasted with their defaults and the user has to set them up again by hand.
struct PasteFXResult
{
    struct Effect
    {
        QString name;     // the effect's display name
        QString iconPath; // a picture of the effect (file or resource path); may be empty
    };

    int pastedCount = 0;                 // effects pasted as they were copied
    std::vector<Effect> needManualSetup; // effects the user has to set up again

    bool isComplete() const { return needManualSetup.empty(); }
};

} // namespace Timeline
