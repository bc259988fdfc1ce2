// A Corvantide plug-in: copy it to the Plugins folder beside the program's
// files (~/.local/share/Corvantide/Plugins/ or, with --home DIR,
// DIR/.local/share/Corvantide/Plugins/) and turn it on in the control panel's
// Plugins page, or in Plugins.ini of the settings folder:
//
//     [AutoLoad]
//     greeter=1
//
// It greets who joins, counts the packets the bot receives (its entry in the
// plug-in list shows the count when clicked), drops typed lines that start
// with "#" and spells out "brb".

var name = "greeter";
var bot = null;
var packets = 0;

function Description() {
    return "Greets who joins, counts packets, and tidies the lines you type.";
}

function Startup(form, plugin) {
    bot = plugin;
    form.RegisterPlugin(name, 1 | 2); // chat events and socket events
    form.AddOption(name, "Packets received", 0, 1);
}

function Shutdown() {
    bot = null;
}

function OptionClicked(Arg) {
    if (Arg === 1) bot.AddText(0, 0x00FFFF, "greeter has seen " + packets + " packets.");
}

function PacketArrival(Index, Data) {
    packets++;
}

function Event_UserJoin(BotIndex, Username, Message, Flags, Ping) {
    bot.AddQueue(BotIndex, "Hello " + Username + ", greetings from a plug-in.");
}

function Event_PressedEnter(BotIndex, Message) {
    if (Message.charAt(0) === "#") return { Message: "" };
    return { Message: Message.replace(/\bbrb\b/g, "be right back") };
}

// A plug-in that asks for chat or socket events hears every member of the
// kind; the ones it has no use for are left empty.
for (const member of ["SocketConnect", "SocketClose", "SocketError", "Event_UserPresent",
                      "Event_UserLeave", "Event_WhisperFrom", "Event_UserTalk",
                      "Event_Broadcast", "Event_Channel", "Event_UserUpdate", "Event_WhisperTo",
                      "Event_ChannelFull", "Event_ChannelDoesNotExist",
                      "Event_ChannelRestricted", "Event_Info", "Event_Error", "Event_UserEmote",
                      "Event_EnteredChat"]) {
    if (typeof this[member] !== "function") this[member] = function () {};
}
