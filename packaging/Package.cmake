# The Debian package; tools/package makes it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME querlin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Mandolan)
set(CPACK_PACKAGE_HOMEPAGE_URL https://mandolan.example)
set(CPACK_PACKAGE_CONTACT "Querlin <querlin@mandolan.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Diktieren in jedes Programm, für rechtliche Betreuungen")
set(CPACK_PACKAGE_DESCRIPTION
"Eine Taste halten, sprechen, loslassen: Der fertige Text steht an der
Schreibmarke, in welchem Programm auch immer. Querlin kennt Paragraphen,
Aktenzeichen und Daten, fügt Gesetze im Wortlaut ein und rettet jeden
Text, der sich nicht zustellen ließ. Alles Gesprochene bleibt auf dem
Rechner.

Das beigelegte Sprachmodell dient der Vorführung. Für die Arbeit wird ein
deutsches Streaming-Modell für sherpa-onnx gebraucht; es gehört in den
Ordner ~/.local/share/Querlin/Modelle.")
if(NOT QUERLIN_HAS_SHERPA)
  string(APPEND CPACK_PACKAGE_DESCRIPTION
" Diesem Paket liegt
die Bibliothek dazu nicht bei: Solche Modelle kann es nicht verwenden.")
endif()

# Installed below a DESTDIR, so that the prefix is the true one when the entries are written.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS libcurl4) # Loaded at run time; the rest is found by itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${QUERLIN_SHERPA_FOLDER})
# All of them are what it speaks to or starts; without one, what it is for is missing and the rest works.
set(recommended
  at-spi2-core
  "default-dbus-session-bus | dbus-session-bus"
  espeak-ng
  hicolor-icon-theme
  "pipewire-pulse | pulseaudio"
  xdg-utils)
list(JOIN recommended ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS)

include(CPack)
