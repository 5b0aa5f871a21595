// The dialog's pages, its files, the clipboard, its preview and its end.

#include "tests/settings/channel_setting_fixture.h"

namespace marvolen::test {
namespace {

TEST_F(ChannelSettingDlg, ChangesNothingThatNobodyChanged) {
    for (const int end : {IDOK, IDCANCEL}) {
        Run(
            DistinctTable(),
            [&] {
                EXPECT_EQ(Seen(), std::vector<int>{2});
                for (int k = 0; k < kChannelCount; ++k) {
                    SelectTab(k);
                    ASSERT_EQ(Seen(), std::vector<int>{k});
                }
            },
            end);
    }
}

TEST_F(ChannelSettingDlg, StoresWhatIsTypedAndNoMoreThanAFieldHolds) {
    ChannelTable expected = DistinctTable();
    SetFieldText(expected[2].host, "10.0.0.5");
    SetFieldText(expected[2].netName, "(10.0.0.5)");
    SetFieldText(expected[2].port, std::string(259, '8'));
    SetFieldText(expected[2].userName, std::string(256, 'u'));
    SetFieldText(expected[2].password, "\u20ac");
    SetFieldText(expected[2].recordPath, (folder.Path() / "chl07.dbt").string());
    expected[2].channelIndex = g_channelInfo[2].channelIndex = 6;
    expected[2].maxSizeMB = 12;
    expected[2].cameraIndex = 3;
    expected[2].sizeIndex = 0;
    expected[2].rateIndex = 9;
    Run(expected, [&] {
        Type(IDC_PAGE_HOST, "10.0.0.5");
        Type(IDC_PAGE_NET_NAME, "");
        Type(IDC_PAGE_PORT, std::string(300, '8'));
        Item(IDC_PAGE_USER_NAME).clear();
        Item(IDC_PAGE_USER_NAME).insert(QString(256, QLatin1Char('u')));
        Item(IDC_PAGE_USER_NAME).insert(QString::fromUcs4(U"\U0001F600"));
        Item(IDC_PAGE_PASSWORD).clear();
        Item(IDC_PAGE_PASSWORD).insert(QStringLiteral("\u20ac"));
        Type(IDC_PAGE_MAX_SIZE, " 12MB");
        Item<QComboBox>(IDC_PAGE_CAMERA).setCurrentIndex(3);
        Item<QComboBox>(IDC_PAGE_SIZE).setCurrentIndex(0);
        Item<QComboBox>(IDC_PAGE_RATE).setCurrentIndex(9);
        QWidget& choose = Item<QWidget>(IDC_PAGE_CHOOSE_PATH);
        ChooseFile(choose, "chl07");
        EXPECT_EQ(proposed, "chl07");
        std::filesystem::path deep = folder.Path();
        for (int k = 0; k < 2; ++k) deep /= std::string(130, 'd');
        std::filesystem::create_directories(deep);
        ChooseFile(choose, (deep / "x.dbt").string());
        EXPECT_EQ(boxes, "The path is too long.|");
    });
    EXPECT_FALSE(std::filesystem::exists("chl07.dbt"));
}

TEST_F(ChannelSettingDlg, LoadsAndSavesSettingsFiles) {
    ChannelTable other = FactoryChannelTable();
    SetFieldText(other[2].port, "1");
    other[2].channelIndex = -7;
    WriteSettingsFile("other.rsf", other);
    std::string bytes = ReadWholeFile("other.rsf");
    WriteWholeFile("short.rsf", bytes.substr(1));
    WriteWholeFile("long.rsf", bytes + "x");
    ASSERT_EQ(mkfifo("pipe.rsf", 0600), 0);
    std::filesystem::create_symlink("/no/such/folder/x.rsf", "nowhere.rsf");
    ChannelTable typed = DistinctTable();
    SetFieldText(typed[2].port, "99");
    Run(other, [&] {
        QWidget& load = *dialog->GetDlgItem(IDC_SETTING_LOAD);
        QWidget& save = *dialog->GetDlgItem(IDC_SETTING_SAVE);
        Type(IDC_PAGE_PORT, "99");
        ChooseFile(save, "typed");
        EXPECT_EQ(proposed, "ChanInfo");
        ChannelTable saved{};
        EXPECT_TRUE(ReadSettingsFile("typed.rsf", saved));
        EXPECT_EQ(Differing(saved, typed), "");
        ChooseFile(save, "other.rsf");  // nobody asks
        WriteSettingsFile("other.rsf", other);
        EXPECT_EQ(boxes, "");
        ChooseFile(save, "nowhere.rsf");
        EXPECT_EQ(boxes, "Unable To Save!|");
        for (const char* name : {"short.rsf", "long.rsf", "pipe.rsf"}) {
            boxes.clear();
            ChooseFile(load, name);
            EXPECT_EQ(boxes, "Invalid File|");
            EXPECT_EQ(Item(IDC_PAGE_PORT).text().toInt(), 99);
        }
        boxes.clear();
        for (int time = 0; time < 2; ++time) {
            ChooseFile(load, "other.rsf");
            EXPECT_EQ(Item(IDC_PAGE_PORT).text().toInt(), 1);
            std::string labels;
            for (const int id : {IDC_PAGE_CAMERA, IDC_PAGE_SIZE, IDC_PAGE_RATE}) {
                auto& box = Item<QComboBox>(id);
                labels += std::to_string(box.currentIndex()) + ":";
                for (int k = 0; k < box.count(); ++k) labels += box.itemText(k).toStdString() + ",";
            }
            EXPECT_EQ(labels,
                      "0:Camera 1,Camera 2,Camera 3,Camera 4,1:Large,Middle,Small,"
                      "0:30  fps,15  fps,10  fps,7.5 fps,5   fps,3   fps,1   fps,0.5 fps,"
                      "0.2 fps,0.1 fps,");
        }
        EXPECT_EQ(boxes, "");
    });
    EXPECT_EQ(Differing(g_channelInfo, DistinctTable()), "");
}

TEST_F(ChannelSettingDlg, PastesAddresses) {
    const std::string head(kMachinePropertyHeader);
    const auto block = [](const std::string& host) {
        return "Model:M\r\nIPAddress:" + host + "\r\nPort: 8\r\n" + kEnd;
    };
    // What is pasted with this tab selected, what it says, and the hosts that come.
    struct Case {
        int tab;
        std::string text, says;
        std::vector<std::string> hosts;
    };
    for (const Case& c : std::vector<Case>{
             {2, "", "No data in clipboard", {}},
             {2, "DVR_MACHINE_PROPERTY\r\n=========\r\n", "Clipboard data invalid", {}},
             {2, std::string(1 << 20, '='), "Clipboard data invalid", {}},
             {2, head, "", {}},
             {2, "DVR_MACHINE_PROPERTY\n==========\nPort: 8\n==========\n", "", {""}},
             {2, head + block("10.1.2.3") + block("") + block("b:c"), "", {"10.1.2.3", "", "b:c"}},
             {14, head + block("1") + block("2") + block("3") + "rubbish", "", {"1", "2"}},
             {2, head + block("1") + "\r\n" + block("2"), "Translate Failed!", {"1"}},
             {2, head + block("1") + "IPAddress:2\r\n=====", "Translate Failed!", {"1"}},
             {2, head + block("1") + std::string("\0", 1) + block("2"), "", {"1"}},
             {2,
              head + block("1") + "Port:" + std::string("\0\r\n", 3) + kEnd,
              "Translate Failed!",
              {"1"}},
             {2, head + std::string(1 << 20, 'x'), "Translate Failed!", {}},
             {2, head + block(std::string(1 << 20, 'x')), "", {std::string(259, 'x')}},
         }) {
        ChannelTable expected = DistinctTable();
        for (std::size_t k = 0; k < c.hosts.size(); ++k) {
            PageFields fields = FieldsOf(expected[static_cast<std::size_t>(c.tab) + k]);
            fields.host = c.hosts[k];
            fields.port = " 8";
            fields.netName = fields.host.empty() ? "" : "(" + fields.host + ")";
            Commit(fields, expected[static_cast<std::size_t>(c.tab) + k]);
        }
        Run(
            expected,
            [&] {
                boxes.clear();
                if (c.text.empty()) {
                    QApplication::clipboard()->clear();
                } else {
                    SetClipboardText(QString::fromStdString(c.text));
                }
                Click(IDC_SETTING_PASTE);
                EXPECT_EQ(boxes, c.says.empty() ? c.says : c.says + "|");
                EXPECT_EQ(Tabs().GetCurSel(), c.tab);
                const int last = c.tab + std::max(0, int(c.hosts.size()) - 1);
                EXPECT_EQ(Seen(), std::vector<int>{last});
            },
            IDOK, c.tab);
    }
}

// As when the program is asked to end.
TEST_F(ChannelSettingDlg, EndsWithAllWindowsWhateverIsOpenOverIt) {
    poll.stop();
    SetClipboardText(QStringLiteral("rubbish"));
    const std::vector<std::function<void()>> openers{
        [this] { Click(IDC_SETTING_LOAD); },
        [this] { Click(IDC_SETTING_SAVE); },
        [this] { Click(IDC_SETTING_PASTE); },
        [this] { QTest::mouseClick(&Item<QWidget>(IDC_PAGE_CHOOSE_PATH), Qt::LeftButton); },
        [this] { Drag(2, Middle(6)), Drop(Middle(6)); },
        [this] {
            Drag(2, {-500, 30});
            QTest::mouseRelease(&Tabs(), Qt::LeftButton, {}, {-500, 30});
            QApplication::closeAllWindows();  // before the command is carried out
        },
    };
    for (const auto& open : openers) {
        CChannelSettingDlg made(nullptr);
        dialog = &made;
        made.SetInitialTab(2);
        QTimer::singleShot(0, &made, [&] {
            EXPECT_TRUE(QTest::qWaitForWindowActive(&made));
            QTimer::singleShot(0, &made, &QApplication::closeAllWindows);
            open();
        });
        EXPECT_EQ(made.DoModal(), IDCANCEL);
        EXPECT_FALSE(QApplication::activeModalWidget());
        QCoreApplication::processEvents();  // commands that were under way
    }
}

TEST_F(ChannelSettingDlg, KeepsOneConnectionOfThePageInSight) {
    LoopbackListener camera;
    g_channelInfo = FactoryChannelTable();
    for (ChannelInfo& record : g_channelInfo) {
        SetFieldText(record.host, "127.0.0.1");
        SetFieldText(record.port, std::to_string(camera.Port()));
        SetFieldText(record.netName, "Camera");
    }
    g_channelInfo[3].rateIndex = 9;
    ChannelTable expected = g_channelInfo;
    expected[3].rateIndex = 1;
    Run(expected, [&] {
        // The query of the next connection.
        const auto query = [&camera](LoopbackPeer& peer) {
            peer = camera.Accept();
            QCoreApplication::processEvents();  // connected: it sends at once
            const std::string request = peer.ReceiveUntil("\r\n\r\n");
            return request.substr(0, request.find(" HTTP"));
        };
        LoopbackPeer former, next, third;
        EXPECT_EQ(query(former), "GET /getimage?camera=1&fmt=sif");
        SelectTab(3);
        EXPECT_TRUE(former.IsEnded());
        EXPECT_EQ(query(next), "GET /getimage?camera=1&fmt=sif&delay=997");
        // Enter in a field is "Connect", once, with what was typed.
        Item<QComboBox>(IDC_PAGE_RATE, 3).setCurrentIndex(1);
        QTest::keyClick(&Item(IDC_PAGE_HOST, 3), Qt::Key_Return);
        EXPECT_TRUE(next.IsEnded());
        EXPECT_EQ(query(third), "GET /getimage?camera=1&fmt=sif&delay=3");
        camera.Close();
        const std::size_t descriptors = OpenDescriptors();
        for (int k = 0; k < 1000; ++k) SelectTab(k % kChannelCount);
        EXPECT_LE(OpenDescriptors(), descriptors);
    });
}

}  // namespace
}  // namespace marvolen::test
