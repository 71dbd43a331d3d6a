// Sequences of calls that several tests expect, written down by hand from the order of the steps.
#pragma once

#include "outlook/contacts/ContactStoreFixture.h"

#include <string>
#include <vector>

// Those of clearing a message before an update, up to the list of its attachments.
inline std::vector<std::string> ClearingCalls(const std::string& name)
{
    const std::string message = "IMessage(" + name + ").";
    const std::string names = message + "GetIDsFromNames([";
    return {
        message +
            "DeleteProps([3A51001E 3A50001E 3A4C001E 3A59001F 3A5A001F 3A5B001F 3A5C001F 3A5D001F "
            "3A5E001F 3A27001F 3A26001F 3A2A001F 3A28001F 3A29001F 3A2B001F 3A5F001F 3A60001F "
            "3A61001F 3A62001F 3A63001F 3A64001F 3A08001F 3A1B001F 3A2E001F 3A24001F 3A1C001F "
            "3A02001F 3A1E001F 3A57001F 3A09001F 3A2F001F 3A25001F 3A1F001F 3A420040 3A410040 "
            "3001001F 3A06001F 3A44001F 3A11001F 3A45001F 3A4F001F 3A16001F 3A18001F 3A17001F "
            "3A19001F 10090102 3A21001F 3A23001F 3A1D001F 3A4B001F 3A2D001F 3A2C001F 3A1A001F])",
        names + kAddressSetText +
            " 8082 8083 8092 8093 80A2 80A3 801A 801B 801C 8084 8094 80A4 8045 8046 8047 8048 "
            "8049 804A 8080 8090 80A0 8062 802B], 00000000)",
        message +
            "DeleteProps([8082001F 8083001F 8092001F 8093001F 80A2001F 80A3001F 801A001F 801B001F "
            "801C001F 8084001F 8094001F 80A4001F 8045001F 8046001F 8047001F 8048001F 8049001F "
            "804A001F 8080001F 8090001F 80A0001F 8062001F 802B001F])",
        names + kAddressSetText + " 80DE 80DF], 00000000)",
        message + "DeleteProps([80DE0040 80DF0040])",
        names + kPublicSetText + " \"Keywords\"], 00000000)",
        message + "DeleteProps([80E2101F])",
        message + "QueryInterface(IMessage)",
        message + "GetAttachmentTable(00000008)",
        "HrQueryAllRows@24(IMAPITable(" + name + " attachments table), [0E210003], null, null, 0)"};
}

// Those behind the deletion of its attachments.
inline std::vector<std::string> SavingWithoutPictureCalls(const std::string& name)
{
    const std::string message = "IMessage(" + name + ").";
    return {message + "GetIDsFromNames([" + kAddressSetText + " 8015], 00000000)",
            message + "SetProps({8015000B 0})",
            message + "SaveChanges(00000002)"};
}

// The one that marks an attachment as a picture of so many bytes. 0x0CB34557 is the high word of
// the times.
inline std::string MarkingPictureCall(const std::string& attachment, const std::string& bytes)
{
    return "IAttach(" + attachment +
           ").SetProps({3703001F \".jpg\", 3704001F \"\", 3707001F \"ContactPicture.jpg\", "
           "37050003 1, 0E200003 " +
           bytes +
           ", 3001001F \"ContactPicture.jpg\", 370B0003 -1, 7FFD0003 0, 7FFE000B 0, 7FFA0003 0, "
           "7FFF000B 1, 7FFC0040 915151389250813952, 7FFB0040 915151389250813952, 37020102 <>, "
           "37140003 0})";
}
