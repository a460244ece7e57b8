#pragma once

// How a transaction ended.
enum SBusResultCode : unsigned {
    SBusSuccess = 0,
    SBusTimeOut = 1,      // an answer broke off, or on a serial line none came
    SBusChannelError = 2, // the link failed, there is none, or on Ethernet no answer came
    SBusBadData = 3,      // frame, checksum, acknowledge or sequence
    SBusBadData2 = 4,     // a good answer that holds fewer elements than were asked for
};
