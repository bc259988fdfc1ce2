#pragma once

struct CommandContext;

// Commands over the stores users feed: quotes, definitions, macros and mail.
namespace storecommands {

void RandomQuote(const CommandContext& c);
void ListQuotes(const CommandContext& c);
void ListDefinitions(const CommandContext& c);
void Macro(const CommandContext& c);
void AddQuote(const CommandContext& c);
void RemoveQuote(const CommandContext& c);
void GetQuote(const CommandContext& c);
void AddDefinition(const CommandContext& c);
void RemoveDefinition(const CommandContext& c);
void GetDefinition(const CommandContext& c);
void AddMail(const CommandContext& c);

} // namespace storecommands
