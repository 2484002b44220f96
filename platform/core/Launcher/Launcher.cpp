#include "Launcher/Launcher.h"

#include <QString>

Launcher& Launcher::instance()
{
    static Launcher launcher;
    return launcher;
}

void Launcher::setArguments(int argc, char** argv)
{
    m_arguments.clear();
    for (int i = 0; i < argc; ++i)
        m_arguments << QString::fromLocal8Bit(argv[i]);
}
