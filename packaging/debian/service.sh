# The service in the system whose top folder is $root, which is empty for the running system.
service=/usr/libexec/vantro-standalone-service
unit=com.vantro.Standalone1.service

has_systemd() {
    [ -z "$root" ] && [ -d /run/systemd/system ]
}

# Lets systemd read the unit anew, and forget starts of it that failed meanwhile.
reload_systemd() {
    has_systemd || return 0
    systemctl --system daemon-reload >/dev/null || true
    systemctl --system reset-failed $unit >/dev/null 2>&1 || true
}

stop_service() {
    [ -z "$root" ] || return 0
    if has_systemd; then
        deb-systemd-invoke stop $unit || true
    fi
    # Where the bus has started it by itself.
    start-stop-daemon --stop --quiet --oknodo --retry 10 --exec $service || true
}

# Where somebody is signed in with a token, the service watches it.
start_watching_service() {
    has_systemd && [ -n "$(ls -A /run/vantro-standalone 2>/dev/null)" ] || return 0
    deb-systemd-invoke start $unit || true
}
