#pragma once

#include <App/SingleInstance.h>

#include <QStringList>

#include <memory>
#include <optional>

// The editor's single-instance rule, decided before any application object exists: a
// launch that finds another editor running hands its files to it and ends, so it never
// pays for widgets or media libraries. It runs in the launcher (LauncherMain.cpp), which
// links only Qt Core, Qt Network and the inter-process layer.
//
//   auto decision = SecondLaunch::decide(arguments);
//   if (decision.exitCode)
//       return *decision.exitCode;          // handed over (0) or failed (non-zero)
//   // else: this process is the editor; keep decision.instance for its whole life
struct SecondLaunch
{
    // Held by the primary editor: releasing it lets the next launch become the editor.
    std::shared_ptr<Tavrin::App::SingleInstance> instance;
    // Set when this process must end with that status instead of starting the editor.
    std::optional<int> exitCode;

    // Exit statuses of a launch that did not become the editor.
    enum Status { HandedOver = 0, Refused = 1, NobodyListening = 2, NoAnswer = 3, Unsupported = 4 };

    // `arguments` is the command line without host options (element 0 is the program);
    // `key` is the product's single-instance key (Tavrin::App::readSingleInstanceKey).
    static SecondLaunch decide(const QStringList& arguments, const QString& key);

    // The files a launch names, as absolute paths; options and their values are left out.
    static QStringList filesOf(const QStringList& arguments);
};
