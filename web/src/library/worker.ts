// Answers that the library isn't there yet.
import type { Answer, Request } from "./protocol";

onmessage = (event: MessageEvent<Request>) => {
  const answer: Answer = { id: event.data.id, failure: "the library is not built in" };
  postMessage(answer);
};
