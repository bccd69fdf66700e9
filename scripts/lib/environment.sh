# shellcheck shell=bash
# Brings up what the Windows binaries need on a Linux machine: packages, an X display,
# a sound server with a recordable null sink, a Wine prefix and a persistent wineserver.
# Sourced by scripts/test and scripts/demo:
#   dsty_install_packages   install the missing Debian packages (root)
#   dsty_configure          configure the cross build in $DSTY_BUILD
#   dsty_build              build everything with every core
#   dsty_env_up             start Xvfb, PulseAudio, wineserver; export the variables; trap teardown
#   dsty_env_down           stop only what dsty_env_up started (also run by the EXIT trap)

DSTY_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
DSTY_BUILD=${DSTY_BUILD:-$DSTY_ROOT/build}
DSTY_RUN=$DSTY_BUILD/run
DSTY_WINE64=/usr/lib/wine/wine64
DSTY_WINESERVER=/usr/lib/wine/wineserver64

DSTY_PACKAGES=(
  cmake make g++-mingw-w64-x86-64-posix mingw-w64-tools googletest
  wine wine64 libpulse0 pulseaudio pulseaudio-utils
  xvfb x11-apps imagemagick sox alsa-utils sndfile-programs
)

dsty_log() { printf '[env] %s\n' "$*" >&2; }

dsty_missing_packages() {
  local pkg
  for pkg in "${DSTY_PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}\n' "$pkg" 2>/dev/null | grep -qx 'install ok installed' || echo "$pkg"
  done
}

dsty_install_packages() {
  local missing
  mapfile -t missing < <(dsty_missing_packages)
  ((${#missing[@]} == 0)) && return 0
  if ((EUID != 0)); then
    dsty_log "missing packages and not root: ${missing[*]}"
    return 1
  fi
  dsty_log "installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q </dev/null
  apt-get install -y -q "${missing[@]}" </dev/null
}

dsty_configure() {
  cmake -S "$DSTY_ROOT" -B "$DSTY_BUILD" \
    -DCMAKE_TOOLCHAIN_FILE="$DSTY_ROOT/cmake/mingw-w64-x86_64.cmake" \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo
}

dsty_build() { cmake --build "$DSTY_BUILD" --parallel "$(nproc)"; }

# Waits up to $2 tenths of a second for the command in $1 to succeed.
dsty_wait_for() {
  local tries=$2
  until eval "$1"; do
    ((tries-- > 0)) || return 1
    sleep 0.1
  done
}

# An interrupted run leaves its Xvfb behind; its pid file names it.
dsty_stop_stale_xvfb() {
  local pidfile=$DSTY_RUN/xvfb.pid pid
  [[ -f $pidfile ]] || return 0
  pid=$(<"$pidfile")
  if [[ $(cat "/proc/$pid/comm" 2>/dev/null) == Xvfb ]]; then
    dsty_log "stopping an Xvfb left from an earlier run"
    kill "$pid" 2>/dev/null || true
  fi
  rm -f "$pidfile"
}

dsty_start_xvfb() {
  local fdfile=$DSTY_RUN/xvfb.display
  dsty_stop_stale_xvfb
  rm -f "$fdfile"
  # -displayfd picks a free display and reports it once the server accepts clients.
  setsid Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp \
    3>"$fdfile" </dev/null >"$DSTY_RUN/xvfb.log" 2>&1 &
  DSTY_XVFB_PID=$!
  echo "$DSTY_XVFB_PID" >"$DSTY_RUN/xvfb.pid"
  dsty_wait_for "[[ -s '$fdfile' ]]" 100 || { dsty_log "Xvfb did not start"; cat "$DSTY_RUN/xvfb.log" >&2; return 1; }
  DISPLAY=":$(head -n1 "$fdfile")"
  export DISPLAY
  dsty_log "Xvfb on $DISPLAY (pid $DSTY_XVFB_PID)"
}

dsty_pulse_env() {
  # A private runtime folder keeps this server apart from any other on the machine;
  # clients must not autospawn a second server without the null sink.
  export PULSE_RUNTIME_PATH=$DSTY_RUN/pulse
  export PULSE_STATE_PATH=$DSTY_RUN/pulse-state
  export PULSE_CLIENTCONFIG=$DSTY_RUN/pulse-client.conf
  mkdir -p "$PULSE_RUNTIME_PATH" "$PULSE_STATE_PATH"
  chmod 700 "$PULSE_RUNTIME_PATH"
  printf 'autospawn = no\n' >"$PULSE_CLIENTCONFIG"
}

dsty_start_pulse() {
  dsty_pulse_env
  # A server left by an interrupted run holds the socket: replace it.
  if pulseaudio --check 2>/dev/null; then
    dsty_log "stopping a PulseAudio left from an earlier run"
    pulseaudio --kill 2>/dev/null || true
    dsty_wait_for '! pulseaudio --check 2>/dev/null' 50 || true
  fi
  # No DISPLAY or session bus: PulseAudio would otherwise autolaunch a dbus-daemon that outlives it.
  env -u DISPLAY -u DBUS_SESSION_BUS_ADDRESS \
    pulseaudio -n --daemonize=yes --exit-idle-time=-1 --disallow-exit \
    --log-target="file:$DSTY_RUN/pulse.log" \
    -L "module-null-sink sink_name=stim rate=44100 norewinds=1" \
    -L "module-native-protocol-unix auth-anonymous=1" </dev/null >/dev/null 2>&1
  DSTY_PULSE_STARTED=1
  dsty_wait_for 'pactl info >/dev/null 2>&1' 50 || { dsty_log "PulseAudio did not start"; cat "$DSTY_RUN/pulse.log" >&2; return 1; }
  # Capture records what is played: the sink's monitor is the default source.
  pactl set-default-sink stim
  pactl set-default-source stim.monitor
  dsty_log "PulseAudio null sink 'stim' at 44100 Hz, default source stim.monitor"
}

dsty_wine_env() {
  export WINEPREFIX=$DSTY_BUILD/wineprefix
  export WINEARCH=win64
  export WINEDEBUG=-all
  export WINELOADER=$DSTY_WINE64
  # No Mono or Gecko: their installers would open dialogs nobody answers.
  export WINEDLLOVERRIDES="mscoree,mshtml="
}

# Wine maps the Unix root to drive Z:.
dsty_windows_path() { local path=${1//\//\\}; printf 'Z:%s\n' "$path"; }

dsty_wine() { "$WINELOADER" "$@" </dev/null >>"$DSTY_RUN/wine.log" 2>&1; }

# True once the server has opened its listening socket.
dsty_wineserver_listening() {
  find "/proc/$DSTY_WINESERVER_PID/fd" -lname 'socket:*' 2>/dev/null | grep -q .
}

dsty_prefix_ready() { [[ -f $WINEPREFIX/.dsty-ready ]]; }

dsty_create_prefix() {
  dsty_prefix_ready && return 0
  dsty_log "creating the Wine prefix $WINEPREFIX"
  dsty_wine wineboot.exe -i
  touch "$WINEPREFIX/.dsty-ready"
}

# Applied at every start, so an existing prefix picks up a changed setting.
dsty_configure_prefix() {
  local settings=$DSTY_RUN/wine-settings.reg
  # PulseAudio is the only driver, so ALSA's probing neither fails nor prints.
  # A crashing test ends with a backtrace instead of waiting on a crash dialog.
  # With no window manager, a managed window waits 2 s for one each time it is hidden.
  cat >"$settings" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine\Drivers]
"Audio"="pulse"

[HKEY_CURRENT_USER\Software\Wine\WineDbg]
"ShowCrashDialog"=dword:00000000

[HKEY_CURRENT_USER\Software\Wine\X11 Driver]
"Managed"="N"
REG
  dsty_wine regedit.exe /S "$(dsty_windows_path "$settings")"
}

dsty_start_wine() {
  dsty_wine_env
  # A half-made prefix (interrupted creation) is made anew; the server needs the folder to exist.
  dsty_prefix_ready || rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  # A server left by an interrupted run would keep ours from starting.
  "$DSTY_WINESERVER" -k 2>/dev/null || true
  # Detached and with no inherited pipes, or a caller reading our output would never see EOF.
  setsid "$DSTY_WINESERVER" --foreground --persistent </dev/null >/dev/null 2>&1 &
  DSTY_WINESERVER_PID=$!
  # Wine programs started before the socket exists would start a short-lived server of their own.
  dsty_wait_for dsty_wineserver_listening 100 || { dsty_log "wineserver did not start"; return 1; }
  dsty_create_prefix
  dsty_configure_prefix
  # Start Wine's own services now, detached, so no test process passes its pipes on to them.
  dsty_wine wineboot.exe
  dsty_log "Wine prefix ready, wineserver persistent"
}

dsty_env_up() {
  mkdir -p "$DSTY_RUN"
  : >"$DSTY_RUN/wine.log"
  trap dsty_env_down EXIT
  trap 'exit 130' INT TERM
  dsty_start_xvfb
  dsty_start_pulse
  dsty_start_wine
  export DSTY_SCREENSHOT_DIR_UNIX=$DSTY_BUILD/screenshots
  mkdir -p "$DSTY_SCREENSHOT_DIR_UNIX"
  # Test programs see Windows paths.
  DSTY_SCREENSHOT_DIR=$(dsty_windows_path "$DSTY_SCREENSHOT_DIR_UNIX")
  export DSTY_SCREENSHOT_DIR
  export DSTY_ENV_READY=1
}

# Waits for a process we started to end; kills it after 5 s.
dsty_stop_pid() {
  dsty_wait_for "! kill -0 $1 2>/dev/null" 50 || kill -KILL "$1" 2>/dev/null
  wait "$1" 2>/dev/null
}

dsty_env_down() {
  set +e
  if [[ -n ${DSTY_WINESERVER_PID:-} ]]; then
    # -k ends every Wine process of the prefix, then the server itself.
    "$DSTY_WINESERVER" -k 2>/dev/null
    dsty_stop_pid "$DSTY_WINESERVER_PID"
    unset DSTY_WINESERVER_PID
  fi
  if [[ -n ${DSTY_XVFB_PID:-} ]]; then
    kill "$DSTY_XVFB_PID" 2>/dev/null
    dsty_stop_pid "$DSTY_XVFB_PID"
    rm -f "$DSTY_RUN/xvfb.pid"
    unset DSTY_XVFB_PID
  fi
  if [[ -n ${DSTY_PULSE_STARTED:-} ]]; then
    pulseaudio --kill 2>/dev/null
    dsty_wait_for '! pulseaudio --check 2>/dev/null' 50
    unset DSTY_PULSE_STARTED
  fi
  unset DSTY_ENV_READY
  set -e
}
