# The Debian packages, one a component. scripts/make-packages builds them.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "Tarnholt Works Inc.")
set(CPACK_PACKAGE_CONTACT "Tarnholt Works Inc. <packages@tarnholt.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL cli desktop)
if(NOT THNTFS_DESKTOP)
  set(CPACK_COMPONENTS_ALL cli)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The first line is the synopsis.
set(CPACK_DEBIAN_CLI_PACKAGE_NAME th-ntfs-cli)
set(CPACK_DEBIAN_CLI_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_CLI_PACKAGE_RECOMMENDS "fuse3")
set(CPACK_DEBIAN_CLI_PACKAGE_SUGGESTS "th-ntfs")
set(CPACK_DEBIAN_CLI_DESCRIPTION "get files back from damaged NTFS volumes (terminal program)
Finds deleted, damaged and lost files on NTFS volumes, from the raw sectors
of a disk or image: files that were deleted, files on a disk that no longer
opens, files whose partition is gone. It tells what is still there of each,
and saves them with their folders, dates and further names to another disk.
.
Images of failing disks are made too, with a map of the bad sectors, and
disks are cloned. The medium that is read is never written to.")

set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME th-ntfs)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS "fuse3, udisks2, polkitd, qt6-image-formats-plugins, qt6-translations-l10n, qt6-wayland")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_SUGGESTS "th-ntfs-cli")
set(CPACK_DEBIAN_DESKTOP_DESCRIPTION "get files back from damaged NTFS volumes (desktop program)
Finds deleted, damaged and lost files on NTFS volumes, from the raw sectors
of a disk or image. A wizard leads to the disk and its partition, or
searches for one that no table names any more; folders and files are then
shown in a tree, live and deleted, with what is still there of each.
.
Files can be looked at before they are saved to another disk. Images of
failing disks are made too, and disks are cloned. The medium that is read is
never written to.")

include(CPack)
