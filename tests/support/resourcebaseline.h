#ifndef TEST_RESOURCEBASELINE_H
#define TEST_RESOURCEBASELINE_H

// Open descriptors and threads of the process when a test began; compared
// at its end, after a short grace for threads that are still being joined.
class ResourceBaseline
{
public:
    ResourceBaseline();

    // Adds a test failure for each count that did not come back.
    void expectNothingLeaked() const;

    static int openDescriptors();
    static int threads();

private:
    int m_descriptors;
    int m_threads;
};

#endif
