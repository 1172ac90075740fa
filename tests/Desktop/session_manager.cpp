// A session manager that does what one does at log-out, and no more: SIGUSR1 makes it ask every
// client to save, and then to die. It writes its address, for SESSION_MANAGER, into the descriptor
// that its argument names.

#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <poll.h>
#include <unistd.h>

namespace {

std::vector<SmsConn> clients;
std::vector<IceConn> connections;
bool isLoggingOut = false;
volatile std::sig_atomic_t logOutWasAsked = 0;

Status registerClient(SmsConn client, SmPointer, char *previousId) {
    // A client from an earlier session would have an id; ours all are new.
    char *id = previousId ? previousId : SmsGenerateClientID(client);
    SmsRegisterClientReply(client, id);
    std::free(id);
    SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
    clients.push_back(client);
    return True;
}

void saveDone(SmsConn client, SmPointer, Bool) {
    if (isLoggingOut)
        SmsDie(client);
    else
        SmsSaveComplete(client);
}

void closed(SmsConn client, SmPointer, int, char **reasons) {
    SmFreeReasons(0, reasons);
    std::erase(clients, client);
    const IceConn connection = SmsGetIceConnection(client);
    SmsCleanUp(client);
    std::erase(connections, connection);
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
}

void freeProperties(SmsConn, SmPointer, int count, SmProp **properties) {
    std::for_each_n(properties, count, SmFreeProperty);
    std::free(properties);
}

Status newClient(SmsConn, SmPointer, unsigned long *mask, SmsCallbacks *callbacks, char **) {
    std::memset(callbacks, 0, sizeof *callbacks);
    callbacks->register_client.callback = registerClient;
    callbacks->interact_request.callback = [](SmsConn, SmPointer, int) {};
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {};
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {
    };
    callbacks->save_yourself_phase2_request.callback = [](SmsConn client, SmPointer) {
        SmsSaveYourselfPhase2(client);
    };
    callbacks->save_yourself_done.callback = saveDone;
    callbacks->close_connection.callback = closed;
    callbacks->set_properties.callback = freeProperties;
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char **) {};
    callbacks->get_properties.callback = [](SmsConn client, SmPointer) {
        SmsReturnProperties(client, 0, nullptr);
    };
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    return True;
}

void accept(IceListenObj listener) {
    IceAcceptStatus status;
    const IceConn connection = IceAcceptConnection(listener, &status);
    if (!connection)
        return;
    while (IceConnectionStatus(connection) == IceConnectPending)
        if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesSuccess)
            return;
    if (IceConnectionStatus(connection) == IceConnectAccepted)
        connections.push_back(connection);
}

void logOut() {
    isLoggingOut = true;
    for (const SmsConn client : clients)
        SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleAny, False);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    std::array<char, 256> error{};
    int count = 0;
    IceListenObj *listeners = nullptr;
    const auto anyHost = [](char *) -> Bool { return True; };
    if (!SmsInitialize("Lorvane", "test", newClient, nullptr, anyHost, error.size(),
                       error.data()) ||
        !IceListenForConnections(&count, &listeners, error.size(), error.data())) {
        std::fprintf(stderr, "%s\n", error.data());
        return 1;
    }
    for (int i = 0; i < count; ++i)
        IceSetHostBasedAuthProc(listeners[i], anyHost);
    IceSetIOErrorHandler([](IceConn connection) { std::erase(connections, connection); });
    std::signal(SIGUSR1, [](int) { logOutWasAsked = 1; });

    char *const address = IceComposeNetworkIdList(count, listeners);
    const std::string line = std::string(address) + "\n";
    const int output = std::atoi(argv[1]);
    if (write(output, line.data(), line.size()) < 0)
        return 1;
    close(output);

    while (true) {
        std::vector<pollfd> watched;
        watched.reserve(static_cast<std::size_t>(count) + connections.size());
        for (int i = 0; i < count; ++i)
            watched.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
        const std::vector<IceConn> open = connections;
        for (const IceConn connection : open)
            watched.push_back({IceConnectionNumber(connection), POLLIN, 0});
        const int ready = poll(watched.data(), watched.size(), 1000);
        if (logOutWasAsked && !isLoggingOut)
            logOut();
        if (ready <= 0)
            continue;
        for (int i = 0; i < count; ++i)
            if (watched[static_cast<std::size_t>(i)].revents)
                accept(listeners[i]);
        for (std::size_t i = 0; i < open.size(); ++i)
            if (watched[static_cast<std::size_t>(count) + i].revents)
                IceProcessMessages(open[i], nullptr, nullptr);
    }
}
