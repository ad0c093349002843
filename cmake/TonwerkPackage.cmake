# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package, built by scripts/package: both programs, the desktop entry, icon, MIME type,
# AppStream data and manual pages, with its dependencies found by dpkg-shlibdeps.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tonwerk)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "Vantrel Signal Applications")
set(CPACK_PACKAGE_CONTACT "Vantrel Signal Applications <tonwerk@vantrel.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "practice trainer for International Morse code")
set(CPACK_PACKAGE_DESCRIPTION
    "Tonwerk keys practice text through the sound card at the speed, Farnsworth
spacing and pitch chosen, shows each character as it is sent, speaks the
letters back, makes random groups and call signs and writes lessons as WAV,
MP3, Ogg Vorbis, Opus or FLAC files. tonwerk-cli offers the same on a terminal.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION hamradio)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Qt loads its SVG image plugin for the artwork at run time, unseen by dpkg-shlibdeps; sound goes
# to a PulseAudio or PipeWire server through ALSA's plugin.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libasound2-plugins")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
