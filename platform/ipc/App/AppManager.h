#pragma once

#include <QString>

#include <string>

namespace Tavrin {
namespace App {

// Connection ids and the per-user socket directory of the inter-process layer.
//
// A connection id names one running application process: "<product>+<app>+<pid>+<nonce>".
// It is also the file name of that process's socket, so the directory listing is the
// list of running applications. The nonce keeps ids unique when a pid is reused.
class AppManager
{
public:
    // KLIPVANE_IPC_DIR, else $XDG_RUNTIME_DIR/klipvane-ipc, else <temp>/klipvane-ipc-<uid>
    // (<temp> is $TMPDIR or /tmp) unless that name is taken by something that is not this
    // user's own folder, and then ~/.cache/klipvane-ipc-<host>, which nobody else can create.
    static QString SocketDirectory();
    // Creates the directory private to the user (0700) or checks an existing one: it must be
    // a real directory owned by this user; group and other permissions are removed.
    static bool EnsureSocketDirectory(QString* error);

    static std::string MakeConnectId(const std::string& productId, const std::string& appId);
    // The connection id this process uses for `appId`; empty before that application
    // started communication in this process.
    static std::string GetCurrentConnectId(const std::string& appId);
    static void SetCurrentConnectId(const std::string& appId, const std::string& connectId);
    // True when `connectId` belongs to the application `appId`.
    static bool IsValidAppId(const std::string& appId, const std::string& connectId);

    static bool IsProcessAlive(qint64 pid);
};

// The parts of a connection id.
class ProductAppID
{
public:
    explicit ProductAppID(const std::string& connectId);

    bool IsValid() const { return m_valid; }
    const std::string& GetProductID() const { return m_product; }
    const std::string& GetAppID() const { return m_app; }
    qint64 GetPid() const { return m_pid; }

private:
    bool m_valid = false;
    std::string m_product;
    std::string m_app;
    qint64 m_pid = 0;
};

} // namespace App
} // namespace Tavrin
