#pragma once

#include <memory>

class QString;

namespace nubble {

class AudioInput;
class FolderWatch;
class InstanceBus;
class ProcessTable;
class ProcessWatch;
class TerminationSignals;

// What every process of the program may need of the system, with a display or without.
namespace System {

[[nodiscard]] std::unique_ptr<ProcessTable> processTable();
[[nodiscard]] std::unique_ptr<ProcessWatch> processWatch();
[[nodiscard]] std::unique_ptr<FolderWatch> folderWatch();
[[nodiscard]] std::unique_ptr<InstanceBus> instanceBus(const QString &serviceName);
[[nodiscard]] std::unique_ptr<AudioInput> audioInput();
[[nodiscard]] std::unique_ptr<TerminationSignals> terminationSignals(); // needs the application object

// Reads the configuration of the fonts beside whatever else goes on until the handle goes: the first text
// that is measured would wait for it, and it is the longest single piece of a start.
[[nodiscard]] std::shared_ptr<void> fontPreload();

} // namespace System

} // namespace nubble
