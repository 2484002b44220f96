#include "SingleInstance.h"

#include <App/ICustomizationManager.h>
#include <App/ServiceRegistry.h>
#include <App/SingleInstance.h>

#include <glog/logging.h>

namespace IPC {
namespace Util {
namespace {

class SingleInstance : public ISingleInstance
{
public:
    explicit SingleInstance(const QString& key) : m_instance(new Tavrin::App::SingleInstance(key, nullptr)) {}
    ~SingleInstance() override { delete m_instance; }
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    bool isAnotherInstanceRunning() const override { return m_instance->isAnotherInstanceRunning(); }
    bool waitForOtherInstance(qint64 timeout) override { return m_instance->waitForOtherInstance(timeout); }

private:
    Tavrin::App::SingleInstance* m_instance;
};

} // namespace

ISingleInstance::~ISingleInstance() = default;

QString editorSingleInstanceId()
{
    const auto manager = Tavrin::App::ServiceRegistry::instance().get<Tavrin::App::ICustomizationManager>();
    if (!manager) {
        LOG(WARNING) << "No customization manager registered; using the default single-instance key";
        return QStringLiteral("klipvane-editor");
    }
    return QString::fromStdString(manager->singleInstanceKey());
}

std::shared_ptr<ISingleInstance> createEditorSingleInstance()
{
    return std::make_shared<SingleInstance>(editorSingleInstanceId());
}

} // namespace Util
} // namespace IPC
