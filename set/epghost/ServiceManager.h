// What the set tells the service manager that started it.
#pragma once

namespace epgset {

/// What the set is doing. The manager takes the last one for true.
enum class ServiceState { Ready, Reloading, Stopping };

/// Tells the manager, by a datagram to the socket that $NOTIFY_SOCKET names: a path, or "@" and the name of
/// an abstract socket. Does nothing where there is no manager; a failure is logged.
void tellServiceManager(ServiceState state);

}  // namespace epgset
