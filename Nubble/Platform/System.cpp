#include "Platform/System.h"

#include "Platform/Freedesktop/FontPreload.h"
#include "Platform/Freedesktop/SessionBus.h"
#include "Platform/Linux/LinuxFolderWatch.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/LinuxProcessWatch.h"
#include "Platform/Linux/LinuxTerminationSignals.h"
#include "Platform/Pulse/PulseAudioInput.h"

namespace nubble::System {

std::unique_ptr<ProcessTable> processTable()
{
    return std::make_unique<LinuxProcessTable>();
}

std::unique_ptr<ProcessWatch> processWatch()
{
    return std::make_unique<LinuxProcessWatch>();
}

std::unique_ptr<FolderWatch> folderWatch()
{
    return std::make_unique<LinuxFolderWatch>();
}

std::unique_ptr<InstanceBus> instanceBus(const QString &serviceName)
{
    return std::make_unique<SessionBus>(serviceName);
}

std::unique_ptr<AudioInput> audioInput()
{
    return std::make_unique<PulseAudioInput>();
}

std::unique_ptr<TerminationSignals> terminationSignals()
{
    return std::make_unique<LinuxTerminationSignals>();
}

std::shared_ptr<void> fontPreload()
{
    return std::make_shared<FontPreload>();
}

} // namespace nubble::System
