#include <afxwin.h>
#include <gtest/gtest.h>
#include <atomic>

namespace
{
UINT AFX_CDECL storeAnswer(LPVOID param)
{
    static_cast<std::atomic<int>*>(param)->store(42);
    return 7;
}

// Tells when the thread object is deleted.
class CWatchedThread : public CWinThread
{
public:
    CWatchedThread(LPVOID param, HANDLE deleted) : CWinThread(storeAnswer, param), m_deleted(deleted) {}
    ~CWatchedThread() override { ::SetEvent(m_deleted); }

private:
    HANDLE m_deleted;
};
} // namespace

TEST(Threads, SuspendedThreadKeptByItsCreator)
{
    std::atomic<int> answer{0};
    CWinThread* thread = AfxBeginThread(storeAnswer, &answer, THREAD_PRIORITY_BELOW_NORMAL, 0, CREATE_SUSPENDED);
    ASSERT_NE(nullptr, thread);
    EXPECT_EQ(THREAD_PRIORITY_BELOW_NORMAL, thread->GetThreadPriority());
    ::Sleep(20);
    EXPECT_EQ(0, answer.load()); // not started yet
    thread->m_bAutoDelete = FALSE;
    thread->ResumeThread();
    ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(thread->m_hThread, 5000));
    DWORD exitCode = 0;
    ::GetExitCodeThread(thread->m_hThread, &exitCode);
    EXPECT_EQ(7u, exitCode);
    EXPECT_EQ(42, answer.load());
    delete thread;
}

TEST(Threads, ObjectDeletesItselfWhenTheFunctionReturns)
{
    std::atomic<int> answer{0};
    HANDLE deleted = ::CreateEventW(NULL, TRUE, FALSE, NULL);
    auto* thread = new CWatchedThread(&answer, deleted);
    ASSERT_TRUE(thread->CreateThread());
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(deleted, 5000));
    EXPECT_EQ(42, answer.load());
    ::CloseHandle(deleted);

    std::atomic<int> second{0};
    ASSERT_NE(nullptr, AfxBeginThread(storeAnswer, &second));
    for (int i = 0; i < 500 && second == 0; ++i)
        ::Sleep(10);
    EXPECT_EQ(42, second.load());
}
