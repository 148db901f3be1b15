#ifndef OBD_SUPPORTEDLISTS_H
#define OBD_SUPPORTEDLISTS_H

#include <map>
#include <vector>

namespace Obd {

class Ecu;

// The decoded "supported" bitmaps of one request, per ECU: offsets 1..32
// within the queried range (32 itself says the next range exists).
class SupportedLists
{
public:
    SupportedLists();
    virtual ~SupportedLists();

    // Four bitmap bytes, first byte in the top bits; replaces the ECU's list.
    void store(unsigned int ecuId, unsigned char b0, unsigned char b1, unsigned char b2,
               unsigned char b3);
    // False and "invalid ECU id " logged when the ECU did not answer.
    bool get(const Ecu& ecu, std::vector<unsigned char>& list) const;
    void getEcuIds(std::vector<unsigned int>& list) const;
    void clear();

    static void decodeBitmap(unsigned char b0, unsigned char b1, unsigned char b2,
                             unsigned char b3, std::vector<unsigned char>& list);

private:
    std::map<unsigned int, std::vector<unsigned char>> m_lists;
};

} // namespace Obd

#endif
