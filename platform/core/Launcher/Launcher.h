#pragma once

#include <QStringList>

// The application launcher: keeps the process's command line as it was given, before
// any part of the application consumed options from it.
class Launcher
{
public:
    static Launcher& instance();

    void setArguments(const QStringList& arguments) { m_arguments = arguments; }
    void setArguments(int argc, char** argv);
    const QStringList& arguments() const { return m_arguments; }

private:
    Launcher() = default;
    QStringList m_arguments;
};
