#include "disktools/CopyMapFile.h"
#include "disktools/CopyRules.h"
#include "engine/AskForDisk.h"

namespace thntfs {

namespace {

std::string CannotGoOn(const CopyVerdict& verdict, const std::string& why) {
    return "Cannot go on with " + verdict.Path + ": " + why;
}

std::string WithAdvice(ErrorCode code) {
    const std::string advice = code == kErrorAccessDenied ? std::string() : RightsAdvice(code);
    return SystemErrorText(code) + (advice.empty() ? "" : " ") + advice;
}

std::string PlaceText(const CopyVerdict& verdict, const std::string& source) {
    switch (verdict.Why) {
    case CopyRefusal::OneMedium:
        return verdict.Path + " and " + source + " are one disk or image file. Choose another target.";
    case CopyRefusal::TargetOnSource:
        return verdict.Path + " lies on the medium that is to be read, " + source +
               ". Writing there would destroy what is to be recovered; choose a place on another disk.";
    case CopyRefusal::SourceOnTarget:
        return source + " lies on " + verdict.Path +
               " and would be written over by its own copy. Choose another target.";
    case CopyRefusal::TargetInUse:
        return verdict.Path + " is in use: it, or a part of it, is mounted or swapped to. Unmount it first.";
    case CopyRefusal::TargetTooSmall:
        return verdict.Path + " is too small: the copy needs " + std::to_string(verdict.Needed) +
               " bytes, and it has " + std::to_string(verdict.There) + ".";
    default:
        return "There is too little room for " + verdict.Path + ": it needs " +
               std::to_string(verdict.Needed) + " bytes, and " + std::to_string(verdict.There) + " are free.";
    }
}

std::string ImageText(const CopyVerdict& verdict) {
    switch (verdict.Why) {
    case CopyRefusal::ImageExists:
        return verdict.Path + " exists already and is not written over.";
    case CopyRefusal::MapExists:
        return verdict.Path + " exists already, without its image; it is not written over.";
    case CopyRefusal::NoImage:
        return "There is no " + verdict.Path + " to go on with.";
    case CopyRefusal::NoImageFile:
        return verdict.Path + " is no image file.";
    case CopyRefusal::CannotMake:
        return "Cannot make " + verdict.Path + ": " + SystemErrorText(verdict.Code);
    case CopyRefusal::CannotRead:
        return "Cannot read " + verdict.Path + ": " + SystemErrorText(verdict.Code);
    case CopyRefusal::CannotWrite:
        return "Cannot open " + verdict.Path + " for writing: " + WithAdvice(verdict.Code);
    case CopyRefusal::TargetHeld:
        return verdict.Path + " is in use by the system.";
    case CopyRefusal::SourceEmpty:
        return verdict.Path + " is empty: there is not one sector to copy.";
    default:
        return "Cannot open " + verdict.Path + ": " + WithAdvice(verdict.Code);
    }
}

std::string ResumeText(const CopyVerdict& verdict, const std::string& source) {
    const std::string map = MapPathOf(verdict.Path);
    switch (verdict.Why) {
    case CopyRefusal::BadMap:
        return CannotGoOn(verdict, "its map " + map + " can't be used: " + verdict.Detail + ".");
    case CopyRefusal::OtherSerial:
        return CannotGoOn(verdict, "it was taken from the disk with the serial number " + verdict.Detail +
                                       ", and " + source + " has another.");
    case CopyRefusal::ShorterThanMap:
        return CannotGoOn(verdict, "it holds less than its map " + map + " says.");
    case CopyRefusal::OtherSize:
        return CannotGoOn(verdict,
                          "it is not an image of " + source + ", which has another size or other sectors.");
    case CopyRefusal::OtherContents:
        return CannotGoOn(verdict, "sector " + std::to_string(verdict.Sector) + " of " + source +
                                       " is not what was copied. It is another disk, or it has been "
                                       "written to since; make a new image.");
    default:
        return CannotGoOn(verdict, "it was begun from " + verdict.Detail +
                                       ", and nothing that was copied "
                                       "could be read from " +
                                       source + " to tell whether that is the same disk.");
    }
}

} // namespace

std::string CopyRefusalText(const CopyVerdict& verdict, const std::string& source) {
    if (verdict.Why == CopyRefusal::None) {
        return {};
    }
    if (verdict.Why <= CopyRefusal::TooLittleRoom) {
        return PlaceText(verdict, source);
    }
    return verdict.Why >= CopyRefusal::BadMap && verdict.Why <= CopyRefusal::SourceUnknown
               ? ResumeText(verdict, source)
               : ImageText(verdict);
}

} // namespace thntfs
