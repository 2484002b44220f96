#pragma once

#include <QGraphicsScene>
#include <QObject>
#include <QPointer>

#include <functional>
#include <vector>

// The graphics scene of the preview, owned here; views show it, editors place items on it.
class SceneHelper : public QObject
{
    Q_OBJECT
public:
    explicit SceneHelper(QObject* parent = nullptr) : QObject(parent), m_scene(this) {}
    QGraphicsScene* scene() { return &m_scene; }
    const QGraphicsScene* scene() const { return &m_scene; }

private:
    QGraphicsScene m_scene;
};

// A client that uses one service at a time, exclusively: whoever edits on the scene binds
// itself to the client and is told (its break function) when the binding must end, because
// playback started, the service changed, or the client is reset.
//
//   int id = client.bind([this] { stopEditing(); });
//   client.inUse();        // true
//   client.breakAll();     // stopEditing() runs, the client is free again
class ExclusiveClient
{
public:
    ExclusiveClient() = default;
    ExclusiveClient(const ExclusiveClient&) = delete;
    ExclusiveClient& operator=(const ExclusiveClient&) = delete;
    ~ExclusiveClient() = default;

    QObject* service() const { return m_service; }
    // A new service ends the bindings to the old one.
    void setService(QObject* service);

    // Returns the binding's identifier; `onBreak` runs once when the binding is broken.
    int bind(std::function<void()> onBreak);
    // Ends one binding without calling its break function (its holder let go).
    void release(int binding);
    void breakAll();
    bool inUse() const { return !m_bindings.empty(); }

private:
    QPointer<QObject> m_service;
    std::vector<std::pair<int, std::function<void()>>> m_bindings;
    int m_next = 1;
};
