#pragma once

#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <sys/prctl.h>

namespace lorvane {

/// A program that a test starts for itself and that ends with it, however the test ends.
class PrivateProcess {
public:
    PrivateProcess(const QString &program, const QStringList &arguments) {
        process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process_.setStandardErrorFile(QProcess::nullDevice());
        process_.start(program, arguments);
        if (!process_.waitForStarted())
            ADD_FAILURE() << "can't start " << program.toStdString();
    }
    PrivateProcess(const PrivateProcess &) = delete;
    PrivateProcess &operator=(const PrivateProcess &) = delete;
    ~PrivateProcess() {
        if (process_.state() != QProcess::NotRunning) {
            process_.kill();
            process_.waitForFinished();
        }
    }

    /// The next line that it writes, or an empty one after ten seconds.
    QString readLine() {
        while (!process_.canReadLine() && process_.waitForReadyRead(10'000)) {
        }
        return QString::fromUtf8(process_.readLine()).trimmed();
    }

    QProcess &process() { return process_; }
    void send(int number) { ::kill(pid_t(process_.processId()), number); }

private:
    QProcess process_;
};

/// Runs a program to its end and gives what it wrote; `isDone` is false if it failed.
inline QString run(const QString &program, const QStringList &arguments, bool *isDone = nullptr) {
    QProcess process;
    process.start(program, arguments);
    const bool isOver = process.waitForFinished(10'000);
    if (isDone)
        *isDone = isOver && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

/// A session bus that starts the desktop's services on demand, with a home of their own.
class PrivateBus {
public:
    /// What a bus may be without: an element of its configuration, or text within its policy.
    explicit PrivateBus(const QString &services = QStringLiteral("<standard_session_servicedirs/>"),
                        const QString &policy = {}) {
        QFile file(folder_.filePath(QStringLiteral("bus.conf")));
        file.open(QIODevice::WriteOnly);
        file.write(QStringLiteral("<busconfig><type>session</type><listen>unix:dir=%1</listen>%2"
                                  "<policy context=\"default\"><allow send_destination=\"*\" "
                                  "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                                  "<allow own=\"*\"/>%3</policy></busconfig>")
                       .arg(folder_.path(), services, policy)
                       .toUtf8());
        file.close();
        QStringList arguments{QStringLiteral("GSETTINGS_BACKEND=memory")};
        for (const QString &variable :
             {QStringLiteral("HOME"), QStringLiteral("XDG_RUNTIME_DIR"),
              QStringLiteral("XDG_DATA_HOME"), QStringLiteral("XDG_CONFIG_HOME")})
            arguments.append(variable + u'=' + folder_.path());
        daemon_.emplace(QStringLiteral("env"),
                        arguments + QStringList{QStringLiteral("dbus-daemon"),
                                                QStringLiteral("--config-file=") + file.fileName(),
                                                QStringLiteral("--print-address=1"),
                                                QStringLiteral("--nofork"),
                                                QStringLiteral("--nopidfile")});
        address_ = daemon_->readLine();
    }

    QString address() const { return address_; }

private:
    QTemporaryDir folder_;
    std::optional<PrivateProcess> daemon_;
    QString address_;
};

/// An X server that nobody sees, without a window manager.
class PrivateDisplay {
public:
    PrivateDisplay()
        : server_(QStringLiteral("Xvfb"),
                  {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                   QStringLiteral("0"), QStringLiteral("1280x800x24"), QStringLiteral("-nolisten"),
                   QStringLiteral("tcp"), QStringLiteral("-noreset")}),
          name_(u':' + server_.readLine()) {}

    QString name() const { return name_; }

private:
    PrivateProcess server_;
    QString name_;
};

/// A sound server with what `modules` load, and no hardware.
class PrivateSound {
public:
    /// A virtual microphone "mic": what is played to the sink "virtmic" is heard from it.
    static QString microphone(int rate = 48000, int channels = 1) {
        return QStringLiteral("load-module module-null-sink sink_name=virtmic rate=%1 channels=%2 "
                              "format=float32le norewinds=1\n"
                              "load-module module-remap-source source_name=mic "
                              "master=virtmic.monitor\n"
                              "set-default-source mic\n")
            .arg(rate)
            .arg(channels);
    }

    explicit PrivateSound(const QString &modules = microphone()) : modules_(modules) { start(); }

    void start() {
        QFile script(folder_.filePath(QStringLiteral("script.pa")));
        script.open(QIODevice::WriteOnly);
        script.write(QStringLiteral("load-module module-native-protocol-unix auth-anonymous=1 "
                                    "socket=%1\n")
                         .arg(socket())
                         .toUtf8());
        script.write(modules_.toUtf8());
        script.close();
        server_.reset();
        server_.emplace(
            QStringLiteral("env"),
            QStringList{QStringLiteral("HOME=") + folder_.path(),
                        QStringLiteral("XDG_RUNTIME_DIR=") + folder_.path(),
                        QStringLiteral("DBUS_SESSION_BUS_ADDRESS=disabled:"),
                        QStringLiteral("pulseaudio"), QStringLiteral("-n"), QStringLiteral("-F"),
                        script.fileName(), QStringLiteral("--daemonize=no"),
                        QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--use-pid-file=no"),
                        QStringLiteral("--realtime=no"), QStringLiteral("--high-priority=no"),
                        QStringLiteral("--log-level=error")});
        bool isThere = false;
        for (int i = 0; i < 500 && !isThere; ++i) {
            QThread::msleep(10);
            run(QStringLiteral("pactl"), {QStringLiteral("-s"), address(), QStringLiteral("info")},
                &isThere);
        }
        EXPECT_TRUE(isThere) << "the sound server doesn't answer";
    }

    void kill() { server_.reset(); }
    void hang() { server_->send(SIGSTOP); }
    void goOn() { server_->send(SIGCONT); }

    QString socket() const { return folder_.filePath(QStringLiteral("native")); }
    QString address() const { return QStringLiteral("unix:") + socket(); }

    QString control(const QString &command) {
        return run(QStringLiteral("pactl"),
                   QStringList{QStringLiteral("-s"), address()} + command.split(u' '));
    }

private:
    QTemporaryDir folder_;
    QString modules_;
    std::optional<PrivateProcess> server_;
};

} // namespace lorvane
