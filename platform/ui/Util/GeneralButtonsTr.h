#pragma once

#include <QString>

// The texts of the application's common buttons, translated in the context
// "GeneralButtonsTr" so every dialog shows the same words.
class GeneralButtonsTr
{
public:
    static QString gotIt();              // "Got It"
    static QString doNotShowThisAgain(); // "Do not show this again"
    static QString ok();
    static QString cancel();
    static QString close();
    static QString learnMore();
};
